#include "client/storing/ImportedRows.h"

#include <fmt/format.h>

#include <climits>
#include <utility>
#include <vector>

#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

int digitValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

Bytes fromHex(const std::string& hex, const std::string& where) {
  Bytes bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const int high = digitValue(hex[i]);
    const int low = i + 1 < hex.size() ? digitValue(hex[i + 1]) : -1;
    if (high < 0 || low < 0) refuseJson(where, "a value is not in hexadecimal digits");
    bytes.push_back(static_cast<unsigned char>(high << 4 | low));
  }
  return bytes;
}

// The values of one row on their way into a statement, which borrows them until it has run.
class RowBinder {
 public:
  RowBinder(tovr::IDBOperate& connection, const std::string& where) : connection_(connection), where_(where) {}

  void bind(int index, const Json& value) { requireEngine(connection_, bindValue(index, value), where_); }
  void bindBytes(int index, Bytes bytes) {
    Bytes& kept = keep(std::move(bytes));
    requireEngine(connection_, connection_.bind_blob(index, kept.data(), length(kept.size()), nullptr), where_);
  }

 private:
  int bindValue(int index, const Json& value) {
    if (value.is_null()) return connection_.bind_null(index);
    if (value.is_string()) {
      const auto& text = value.get_ref<const std::string&>();
      return connection_.bind_text(index, text.data(), length(text.size()), nullptr);
    }
    if (value.is_number_float()) return connection_.bind_double(index, value.get<double>());
    if (const auto number = wholeNumber(value)) return connection_.bind_int64(index, *number);
    return bindHex(index, value);
  }

  int bindHex(int index, const Json& value) {
    const bool known = value.is_object() && value.size() == 1 && value.begin().value().is_string();
    const std::string kind = known ? value.begin().key() : "";
    if (kind != "blob" && kind != "text") refuseJson(where_, "a value is of a kind that no table holds");
    Bytes& bytes = keep(fromHex(value.begin().value().get_ref<const std::string&>(), where_));
    if (kind == "blob") return connection_.bind_blob(index, bytes.data(), length(bytes.size()), nullptr);
    return connection_.bind_text(index, reinterpret_cast<const char*>(bytes.data()), length(bytes.size()), nullptr);
  }

  // With room for one byte at least: a null pointer would bind NULL.
  Bytes& keep(Bytes bytes) {
    bytes.reserve(1);
    kept_.push_back(std::move(bytes));
    return kept_.back();
  }

  int length(std::size_t size) const {
    if (size > INT_MAX) refuseJson(where_, "a value is larger than 2 GiB");
    return static_cast<int>(size);
  }

  tovr::IDBOperate& connection_;
  const std::string& where_;
  std::vector<Bytes> kept_;  // the bytes stay where they are when it grows
};

std::string insertStatement(const std::string& table, const std::vector<std::string>& columns) {
  const std::vector<std::string> places(columns.size(), "?");
  std::vector<std::string> names;
  for (const std::string& column : columns) names.push_back(quotedName(column));
  return fmt::format("insert into {}({}) values ({})", table, fmt::join(names, ", "), fmt::join(places, ", "));
}

void requireKnown(const std::vector<std::string>& columns, const Json& row, const std::string& where) {
  if (row.size() != columns.size()) refuseJson(where, fmt::format("it does not have {} values", columns.size()));
  for (const std::string& column : columns) member(row, column.c_str(), where);
}

void insertRow(tovr::IDBOperate& connection, const std::string& table, const std::vector<std::string>& columns,
               const Json& row, const BlobReader& readBlob) {
  std::string where = "a row of " + table;
  if (requireObject(row, where).contains("id")) where = fmt::format("row {} of {}", row["id"].dump(), table);
  requireKnown(columns, row, where);
  const std::string sql = insertStatement(table, columns);
  requireEngine(connection, connection.prepare_v2(sql.c_str(), static_cast<int>(sql.size())), where);
  RowBinder binder(connection, where);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const Json& value = row[columns[i]];
    const int index = static_cast<int>(i) + 1;
    if (columns[i] == kPayloadColumn && value.is_object() && value.contains("file")) {
      binder.bindBytes(index, readBlob(row, value));
    } else {
      binder.bind(index, value);
    }
  }
  connection.step();
  requireEngine(connection, connection.finalize(), where);
}

}  // namespace

void insertRows(tovr::IDBOperate& connection, const std::string& table, const Json& rows, const BlobReader& readBlob,
                const std::function<void()>& afterRow) {
  const std::vector<std::string> columns = columnNames(connection, table);
  for (const Json& row : rows) {
    insertRow(connection, table, columns, row, readBlob);
    afterRow();
  }
}

}  // namespace tovrdb
