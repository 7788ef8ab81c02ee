// Rows as JSON written into a table: every value keeps the type that the JSON gives it.
//
// Numbers and texts are JSON's own, NULL is null. What JSON cannot hold is an object: {"blob": HEX}, and {"text": HEX}
// for texts that are not UTF-8.
#pragma once

#include <functional>
#include <string>

#include "client/base/Json.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// The blob for which a payload's object with a member "file" stands.
using BlobReader = std::function<Bytes(const Json& row, const Json& value)>;

// Adds the rows of a list, their keys included. Payloads with a "file" member are `readBlob`'s; `afterRow` is called
// after each row. Throws Error that names the row if a column is missing or unknown, a value is of a kind that no table
// holds, or the engine refuses it. REQUIRES: a transaction; only applyChanges() calls this.
void insertRows(tovr::IDBOperate& connection, const std::string& table, const Json& rows, const BlobReader& readBlob,
                const std::function<void()>& afterRow);

}  // namespace tovrdb
