// Generic data: one blob per data type.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"

namespace tovrtool {

// A row as it is stored; empty texts and zeros where what it refers to is missing.
struct StoredData {
  std::int64_t id = 0;
  std::string type;
  std::int64_t blobId = 0;
  std::int64_t storedBytes = 0;  // enciphered
  std::string version;
  std::string screen;
};

// In the order in which they were stored. Every function throws ToolError on failure.
std::vector<StoredData> storedData(Session& session);

// Replaces what the type held. The library files every blob under the screen that was added last; without a screen it
// is refused. In a transaction of its own.
void putData(Session& session, std::int32_t type, const std::string& version, Bytes payload);
Bytes getData(Session& session, std::int32_t type);

}  // namespace tovrtool
