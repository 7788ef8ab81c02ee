// Why a file does not open, as far as its bytes tell.
#pragma once

#include <cstdint>
#include <string>

#include "client/base/Error.h"

namespace tovrdb {

// For a file that `key` does not open: what it is likely to be and what to try; a problem of the file if its bytes show
// one, else of the key. `pageSize`: the engine's; 0 if it does not tell.
Error diagnoseUnreadable(const std::string& path, const std::string& key, std::int64_t pageSize);

// For a file whose first page the key opens, and that the engine calls damaged.
Error diagnoseDamaged(const std::string& path, std::int64_t pageSize);

}  // namespace tovrdb
