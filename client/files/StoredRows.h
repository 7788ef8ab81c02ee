// Rows of any table as JSON, without loss: every value keeps the type in which the engine stores it.
//
// The form is that of storing/ImportedRows.h, which writes it back.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// What a payload becomes in the JSON: an object with a member "file". The row has the members before the payload only.
using BlobWriter = std::function<Json(const Json& row, Bytes blob)>;

// Every row of `table` in the order of its keys, one JSON object each, its members in the order of the columns. A row
// that lies on a damaged page is left out, and its key reported with the reason.
using FaultyRow = std::function<void(std::int64_t key, const std::string& fault)>;
void readTable(Session& session, const std::string& table, const BlobWriter& writeBlob,
               const std::function<void(Json row)>& visit, const FaultyRow& leaveOut);

}  // namespace tovrdb
