// Reading through the shared connection what no record brings. Every function throws ToolError on failure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "storage/IDBOperate.h"

namespace tovrtool {

using Row = std::vector<std::string>;

// Every row as texts; NULL is empty.
std::vector<Row> queryRows(tovr::IDBOperate& connection, const std::string& sql);

// The first column of the first row, 0 without rows.
std::int64_t queryNumber(tovr::IDBOperate& connection, const std::string& sql);

// The blob in the first column of the first row; nothing without rows.
std::optional<std::vector<unsigned char>> queryBlob(tovr::IDBOperate& connection, const std::string& sql);

}  // namespace tovrtool
