#include "client/session/SqlQuery.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>

#include "host/StatusText.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

// SQLite's result codes that mean more than a refusal.
struct EngineStatus {
  int status;
  ErrorKind kind;
  const char* words;   // the engine's own, by which a statement that runs others reports their failure
  const char* advice;  // follows "nothing was changed"; null: neither is said, since reads fail with the code, too
  bool check = false;  // checking the file tells more
};

constexpr EngineStatus kEngineStatuses[] = {
    {kErrorStatus, kRefused, nullptr, "", true},
    {kBusyStatus, kBusy, "database is locked", nullptr},
    {6, kBusy, "database table is locked", nullptr},
    {7, kRefused, "out of memory", ": close other programs and try again"},
    {8, kFileProblem, "attempt to write a readonly database", ""},
    {kReadFailedStatus, kFileProblem, "disk I/O error", "", true},
    {kMalformedStatus, kDamaged, "database disk image is malformed", nullptr},
    {13, kNoSpace, "database or disk is full", ": free some space on it and try again"},
    {14, kFileProblem, "unable to open database file", nullptr},
    {18, kRefused, "string or blob too big", ""},
    {19, kRefused, nullptr, ""},
};

template <class Predicate>
const EngineStatus* findStatus(const Predicate& suits) {
  const auto found = std::find_if(std::begin(kEngineStatuses), std::end(kEngineStatuses), suits);
  return found != std::end(kEngineStatuses) ? found : nullptr;
}

ErrorKind kindOf(int status) {
  if (status == tovr::kCipherFailed || status == tovr::kBlockTooSmall) return kDamaged;
  const auto* known = findStatus([&](const EngineStatus& each) { return each.status == status; });
  return known != nullptr ? known->kind : kRefused;
}

std::string engineText(const EngineStatus& known, const std::string& engineWords) {
  std::string text = tovrhost::statusText(known.status);
  if (!engineWords.empty() && (known.words == nullptr || engineWords != known.words)) text += " (" + engineWords + ")";
  if (known.advice != nullptr) text += std::string("; nothing was changed") + known.advice;
  return text;
}

}  // namespace

bool isTable(std::string_view name) { return std::find(kTables.begin(), kTables.end(), name) != kTables.end(); }

bool isBusy(int status) { return kindOf(status) == kBusy; }

Error libraryError(int code, const std::string& engineWords, const std::string& detail) {
  const auto* known = findStatus([&](const EngineStatus& each) {
    return code == kErrorStatus ? each.words != nullptr && engineWords == each.words : each.status == code;
  });
  if (known == nullptr && code == kErrorStatus) known = &kEngineStatuses[0];
  const int status = known != nullptr ? known->status : code;
  if (isBusy(status)) {
    return Error(kBusy, "{}: another program is using the file", status).setStatus(status).suggest(Remedy::kWait);
  }
  std::string text = known != nullptr ? engineText(*known, engineWords) : tovrhost::statusText(status);
  if (known == nullptr && !engineWords.empty()) text += " (" + engineWords + ")";
  if (!detail.empty()) text += "; " + detail;
  Error error = statusError(status, fmt::format("{}: {}", status, text));
  if (known != nullptr && known->check) error.suggest(Remedy::kCheckFile);
  return error;
}

Error statusError(int status, const std::string& text) {
  Error error(kindOf(status), text);
  error.setStatus(status);
  return error;
}

void requireEngine(tovr::IDBOperate& connection, int code, const std::string& subject, const std::string& detail) {
  if (code == 0) return;
  // The engine has no words for codes of the library's own, and none if the connection has not failed.
  const char* words = code < tovr::kNoConnection && connection.errCode() != 0 ? connection.errMsg() : nullptr;
  const Error error = libraryError(code, words != nullptr ? words : "", detail);
  throw subject.empty() ? error : error.about(subject);
}

std::string quotedName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + '"';
}

std::vector<Row> queryRows(tovr::IDBOperate& connection, const std::string& sql) {
  char** table = nullptr;
  int rows = 0;
  int columns = 0;
  const int code = connection.get_table(sql.c_str(), &table, &rows, &columns);
  const auto release = [&connection](char** texts) { connection.free_table(texts); };
  const std::unique_ptr<char*, decltype(release)> owner(table, release);
  requireEngine(connection, code);

  std::vector<Row> found;
  for (int row = 1; row <= rows; ++row) {  // row 0 holds the column names
    Row& texts = found.emplace_back();
    for (int column = 0; column < columns; ++column) {
      const char* text = table[row * columns + column];
      texts.emplace_back(text != nullptr ? text : "");
    }
  }
  return found;
}

std::vector<std::string> columnNames(tovr::IDBOperate& connection, const std::string& table) {
  std::vector<std::string> names;
  for (const Row& row : queryRows(connection, "PRAGMA table_info(" + table + ")")) names.push_back(row[1]);
  return names;
}

std::int64_t queryNumber(tovr::IDBOperate& connection, const std::string& sql) {
  const auto rows = queryRows(connection, sql);
  return rows.empty() ? 0 : std::strtoll(rows[0][0].c_str(), nullptr, 10);
}

std::optional<Bytes> queryBlob(tovr::IDBOperate& connection, const std::string& sql) {
  std::optional<Bytes> blob;
  visitRows(connection, sql, [&] {
    if (!blob) blob = columnBytes(connection, 0);
  });
  return blob;
}

void visitRows(tovr::IDBOperate& connection, const std::string& sql, const std::function<void()>& visit) {
  requireEngine(connection, connection.prepare_v2(sql.c_str(), static_cast<int>(sql.size())));
  try {
    while (connection.step() == tovr::kStepRow) visit();
  } catch (...) {
    connection.finalize();
    throw;
  }
  requireEngine(connection, connection.finalize());  // repeats the error of a failed step
}

std::string columnText(tovr::IDBOperate& connection, int column) {
  const auto* text = reinterpret_cast<const char*>(connection.column_text(column));
  return text != nullptr ? std::string(text, static_cast<std::size_t>(connection.column_bytes(column))) : std::string();
}

Bytes columnBytes(tovr::IDBOperate& connection, int column) {
  const auto* bytes = static_cast<const unsigned char*>(connection.column_blob(column));
  return {bytes, bytes + connection.column_bytes(column)};
}

std::int64_t columnNumber(tovr::IDBOperate& connection, int column) {
  return std::strtoll(columnText(connection, column).c_str(), nullptr, 10);
}

}  // namespace tovrdb
