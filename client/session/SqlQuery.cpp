#include "client/session/SqlQuery.h"

#include <cstdlib>
#include <memory>

#include "client/session/LibraryError.h"
#include "storage/StatusCodes.h"

namespace tovrdb {

void requireEngine(tovr::IDBOperate& connection, int code, const std::string& where, const std::string& detail) {
  if (code == 0) return;
  // Codes of the library's own say it all, and so does one that the connection knows nothing of.
  const char* words = code < tovr::kNoConnection && connection.errCode() != 0 ? connection.errMsg() : nullptr;
  const Error error = libraryError(code, words != nullptr ? words : "", detail);
  throw where.empty() ? error : error.about(where);
}

std::string quotedName(const std::string& name) {
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
