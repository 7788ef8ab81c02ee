#include "client/files/StoredRows.h"

#include <fmt/format.h>

#include <cstdlib>
#include <optional>

#include "client/session/Damage.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

template <class Container>
std::string toHex(const Container& bytes) {
  std::string hex;
  for (const auto byte : bytes) fmt::format_to(std::back_inserter(hex), "{:02x}", static_cast<unsigned char>(byte));
  return hex;
}

Json textAsJson(std::string text) {
  Json value = std::move(text);
  try {
    static_cast<void>(value.dump());
  } catch (const Json::type_error&) {  // not UTF-8
    return {{"text", toHex(value.get_ref<const std::string&>())}};
  }
  return value;
}

// The value in `column`, whose type's name is in the column before it.
Json valueOf(tovr::IDBOperate& connection, int column) {
  const std::string type = columnText(connection, column - 1);
  if (type == "integer") return columnNumber(connection, column);
  if (type == "real") return connection.column_double(column);
  if (type == "text") return textAsJson(columnText(connection, column));
  return nullptr;
}

// The rows that `which` chooses.
void readRows(tovr::IDBOperate& connection, const std::string& table, const std::vector<std::string>& columns,
              const std::string& which, const BlobWriter& writeBlob, const std::function<void(Json row)>& visit) {
  std::vector<std::string> selected;
  for (const std::string& column : columns) selected.push_back(fmt::format("typeof({0}), {0}", quotedName(column)));
  const std::string sql =
      fmt::format("select {} from {} where {} order by id", fmt::join(selected, ", "), table, which);
  visitRows(connection, sql, [&] {
    Json row = Json::object();
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const int place = static_cast<int>(2 * i) + 1;
      const bool blob = columnText(connection, place - 1) == "blob";
      if (!blob) {
        row[columns[i]] = valueOf(connection, place);
      } else if (columns[i] == kPayloadColumn) {
        row[columns[i]] = writeBlob(row, columnBytes(connection, place));
      } else {
        row[columns[i]] = {{"blob", toHex(columnBytes(connection, place))}};
      }
    }
    visit(std::move(row));
  });
}

}  // namespace

void readTable(Session& session, const std::string& table, const BlobWriter& writeBlob,
               const std::function<void(Json row)>& visit, const FaultyRow& leaveOut) {
  tovr::IDBOperate& connection = session.connection();
  const std::vector<std::string> columns = columnNames(connection, table);
  std::optional<std::int64_t> last;  // the key of the row that was read last
  const auto read = [&](const std::string& which) {
    readRows(connection, table, columns, which, writeBlob, [&](Json row) {
      last = row.at("id").get<std::int64_t>();
      visit(std::move(row));
    });
  };
  try {
    return read("1");
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    session.resumeReading();
  }
  const std::string rest = last ? fmt::format(" where id > {}", *last) : "";
  for (const Row& key : queryRows(connection, fmt::format("select id from {}{} order by id", table, rest))) {
    try {
      read("id = " + key[0]);
    } catch (const Error& error) {
      if (!isDamage(error)) throw;
      session.resumeReading();
      leaveOut(std::strtoll(key[0].c_str(), nullptr, 10), error.what());
    }
  }
}

}  // namespace tovrdb
