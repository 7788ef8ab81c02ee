// The statement layer: reading through the shared connection what no record holds, and what a refusal of the library or
// its engine means. Every function throws Error on failure.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/base/Error.h"
#include "storage/IDBOperate.h"

namespace tovrdb {

// Those of the nine tables that have encrypted payloads, in a column of one name.
constexpr char kBlockTable[] = "Coef";
constexpr char kMeasurementTable[] = "LumChromData";
constexpr char kDataTable[] = "Data";
constexpr const char* kPayloadTables[] = {kBlockTable, kMeasurementTable, kDataTable};
constexpr char kPayloadColumn[] = "data";

// The nine tables of a database file, in the order in which rows may refer to one another.
constexpr std::array<const char*, 9> kTables = {"DB_Info",          "Attach_DB_List", "Screen_Info",
                                                kBlockTable,        "Coef_Info",      kMeasurementTable,
                                                "LumChromDataInfo", kDataTable,       "DataInfo"};
bool isTable(std::string_view name);

using Row = std::vector<std::string>;
using Bytes = std::vector<unsigned char>;

// Any name of a column or a table in a file, quoted for SQL.
std::string quotedName(std::string_view name);

// Every row as texts; NULL is empty.
std::vector<Row> queryRows(tovr::IDBOperate& connection, const std::string& sql);

// Of a table, in their order.
std::vector<std::string> columnNames(tovr::IDBOperate& connection, const std::string& table);

// The first column of the first row, 0 without rows.
std::int64_t queryNumber(tovr::IDBOperate& connection, const std::string& sql);

// The blob in the first column of the first row; nothing without rows.
std::optional<Bytes> queryBlob(tovr::IDBOperate& connection, const std::string& sql);

// Calls `visit` for each row; the connection is then at that row, and `visit` may only ask for its columns.
void visitRows(tovr::IDBOperate& connection, const std::string& sql, const std::function<void()>& visit);

// What `read` makes of each row, in their order.
template <class Record>
std::vector<Record> collectRows(tovr::IDBOperate& connection, const std::string& sql,
                                Record (*read)(tovr::IDBOperate& connection)) {
  std::vector<Record> records;
  visitRows(connection, sql, [&] { records.push_back(read(connection)); });
  return records;
}

// A column of the current row. NULL is an empty text, no bytes, the number 0.
std::string columnText(tovr::IDBOperate& connection, int column);
Bytes columnBytes(tovr::IDBOperate& connection, int column);
std::int64_t columnNumber(tovr::IDBOperate& connection, int column);

// The engine's status codes that are told from others. Newer versions of SQLCipher return kErrorStatus for a page that
// they cannot decrypt.
constexpr int kErrorStatus = 1;
constexpr int kBusyStatus = 5;  // another program is using the file; nothing is wrong with it
constexpr int kReadFailedStatus = 10;
constexpr int kMalformedStatus = 11;
constexpr int kNotADatabaseStatus = 26;

bool isBusy(int status);

// "4113: WHAT IT MEANS (the engine's own words); detail", with `status` set. Empty texts are left out, and so are words
// of the engine that repeat the meaning. A failure of the engine says that nothing was changed: REQUIRES that it ends
// the transaction in which it happened, if there is one. If the file is busy the error says so, with Remedy::kWait, and
// nothing else. The kind is kDamaged, kNoSpace, kBusy or kFileProblem for codes that mean that, else kRefused.
Error libraryError(int status, const std::string& engineWords, const std::string& detail);

// For codes of the library's own, about which the engine has no words.
inline Error libraryError(int status, const std::string& detail = "") { return libraryError(status, "", detail); }

// The same status and kind in words of our own.
Error statusError(int status, const std::string& text);

// Throws libraryError() about `subject`, with the engine's own words if it has any, unless `code` is 0. The code may be
// the library's own.
void requireEngine(tovr::IDBOperate& connection, int code, const std::string& subject = "",
                   const std::string& detail = "");

}  // namespace tovrdb
