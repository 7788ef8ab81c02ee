// Rows of any table as JSON and back, without loss: every value keeps the type in which the engine stores it.
//
// Numbers and texts are JSON's own, NULL is null. What JSON cannot hold is an object: {"blob": HEX}, and {"text": HEX}
// for texts that are not UTF-8.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

std::vector<std::string> columnNames(tovr::IDBOperate& connection, const std::string& table);

// Turns a payload into JSON, an object with a member "file", and such an object back into the payload. The writer's
// `row` has only the members that come before the payload.
using BlobWriter = std::function<Json(const Json& row, Bytes blob)>;
using BlobReader = std::function<Bytes(const Json& row, const Json& value)>;

// Every row of `table` in the order of its keys, one JSON object each, its members in the order of the columns. A row
// that lies on a damaged page is left out, and its key reported with the reason.
using FaultyRow = std::function<void(std::int64_t key, const std::string& fault)>;
void readTable(Session& session, const std::string& table, const BlobWriter& writeBlob,
               const std::function<void(Json row)>& visit, const FaultyRow& leaveOut);

// Adds one row, its key included. Payloads with a "file" member are `readBlob`'s. Throws Error that names the row
// when a column is missing or unknown, a value is of a kind that no table holds, or the engine refuses it.
void insertRow(tovr::IDBOperate& connection, const std::string& table, const std::vector<std::string>& columns,
               const Json& row, const BlobReader& readBlob);

}  // namespace tovrdb
