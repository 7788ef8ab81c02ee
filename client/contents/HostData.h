// Generic data: one blob per data type.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// A row as it is stored; empty texts and zeros where what it refers to is missing.
struct StoredData {
  std::int64_t id = 0;
  std::string type;
  std::int64_t blobId = 0;
  std::int64_t storedBytes = 0;  // enciphered
  std::string version;
  std::string screen;
  std::string changed;  // when it was written last
};

// In the order in which they were stored. Every function throws Error on failure.
std::vector<StoredData> storedData(Session& session);

// The key that "Screen_Info" issued last, under which the library files data; 0 before the first screen.
std::int64_t lastScreenKey(Session& session);

// "type 5, 72 stored bytes, of 2026-11-20 10:15:00"
std::string dataText(const StoredData& data);

// Replaces what the type held; returns what was replaced, and where the data was filed if that is unexpected, a line
// each. The library files every blob under the screen that was added last; if that one is deleted, under the last one
// there is. Without a screen it is refused. In a transaction of its own.
std::vector<std::string> putData(Session& session, std::int32_t type, const std::string& version, Bytes payload);
Bytes getData(Session& session, std::int32_t type);

}  // namespace tovrdb
