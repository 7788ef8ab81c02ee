// What hosts store beside cells: generic data, one blob per data type, and measurements of luminance and chromaticity,
// which have no name but their key. Every function throws Error on failure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/Rect.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// A row of generic data. Texts are empty and numbers 0 if what the row refers to is missing.
struct StoredData {
  std::int64_t id = 0;
  std::string type;
  std::int64_t blobId = 0;
  std::int64_t storedBytes = 0;  // encrypted
  std::string version;
  std::string screen;
  std::string changed;  // when it was last written
};

// In the order in which they were stored.
std::vector<StoredData> storedData(Session& session);
Bytes getData(Session& session, std::int32_t type);

// "type 5, 72 stored bytes, of 2026-11-20 10:15:00"
std::string dataText(const StoredData& data);

// The key that the table of screens issued last, 0 before the first screen. The library files generic data under it,
// even if that screen has been deleted.
std::int64_t lastScreenKey(Session& session);

struct StoredMeasurement {
  std::int64_t id = 0;
  std::int64_t storedBytes = 0;  // encrypted
  std::string version;
  std::string type;          // empty unless another program stored it
  std::optional<Rect> rect;  // nothing unless another program stored it
};

// In the order of their keys.
std::vector<StoredMeasurement> storedMeasurements(Session& session);
std::int64_t countMeasurements(Session& session);
Bytes getMeasurement(Session& session, std::int64_t id);

}  // namespace tovrdb
