// Why a file does not open, as far as its bytes tell.
#pragma once

#include <cstdint>
#include <string>

#include "client/base/Error.h"

namespace tovrdb {

// What can be told without the key. Throws Error if `path` cannot be an encrypted database: it does not exist, is not a
// regular file, cannot be read, is empty, or is a database without encryption.
void requireDatabaseFile(const std::string& path);

// The `error` of opening the file with `key`, in terms of what the file is likely to be and what to try: a problem of
// the file if its bytes show one, else of the key. Errors that say nothing about the file are returned unchanged.
// `pageSize` is the engine's; 0 if it does not tell.
Error diagnosed(const Error& error, const std::string& path, const std::string& key, std::int64_t pageSize);

}  // namespace tovrdb
