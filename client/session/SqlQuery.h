// Reading through the shared connection what no record brings. Every function throws Error on failure.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "storage/IDBOperate.h"

namespace tovrdb {

using Row = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

// A name of the file's own, a column's or a table's, as SQL takes it whatever it holds.
std::string quotedName(const std::string& name);

// Every row as texts; NULL is empty.
std::vector<Row> queryRows(tovr::IDBOperate& connection, const std::string& sql);

// Of a table, in their order.
std::vector<std::string> columnNames(tovr::IDBOperate& connection, const std::string& table);

// The first column of the first row, 0 without rows.
std::int64_t queryNumber(tovr::IDBOperate& connection, const std::string& sql);

// The blob in the first column of the first row; nothing without rows.
std::optional<Bytes> queryBlob(tovr::IDBOperate& connection, const std::string& sql);

// Calls `visit` for each row; the connection then stands on that row and may only be asked for its columns.
void visitRows(tovr::IDBOperate& connection, const std::string& sql, const std::function<void()>& visit);

// A column of the current row. NULL is an empty text, no bytes, the number 0.
std::string columnText(tovr::IDBOperate& connection, int column);
Bytes columnBytes(tovr::IDBOperate& connection, int column);
std::int64_t columnNumber(tovr::IDBOperate& connection, int column);

// Throws Error with `where`, the code, its meaning, the engine's own words where it has any, and `detail`, unless
// `code`, which may be the library's own, is 0.
void requireEngine(tovr::IDBOperate& connection, int code, const std::string& where = "",
                   const std::string& detail = "");

}  // namespace tovrdb
