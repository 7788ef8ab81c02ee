// Why a file does not open, as far as its bytes tell without the right key.
#pragma once

#include <cstdint>
#include <string>

#include "tool/system/ToolError.h"

namespace tovrtool {

// What the file is likely to be and what to try: a problem of the file where its bytes show one, else of the key.
// `pageSize`: the engine's.
ToolError diagnoseUnreadable(const std::string& path, std::int64_t pageSize);

// The same for a file whose first page the key opens, and that the engine calls damaged.
ToolError diagnoseDamaged(const std::string& path, std::int64_t pageSize);

// The size of the pages that the engine makes. Throws ToolError.
std::int64_t enginePageSize(const std::string& plugin);

}  // namespace tovrtool
