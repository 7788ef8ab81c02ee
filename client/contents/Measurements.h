// Measurements of luminance and chromaticity, which have no name but their key.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/Rect.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

struct StoredMeasurement {
  std::int64_t id = 0;
  std::int64_t storedBytes = 0;  // enciphered
  std::string version;
  std::string type;  // this and the next: empty, unless another program has stored them
  std::optional<Rect> rect;
};

// In the order of their keys. Every function throws Error on failure.
std::vector<StoredMeasurement> storedMeasurements(Session& session);
std::int64_t countMeasurements(Session& session);

struct MeasurementReport {
  std::int64_t id = 0;
  bool placementRejected = false;  // only the bytes are stored; type and rectangle are not
};

MeasurementReport putMeasurement(Session& session, std::int32_t type, const Rect& rect, const std::string& version,
                                 Bytes payload);
Bytes getMeasurement(Session& session, std::int64_t id);
void clearMeasurements(Session& session);  // in a transaction of its own

}  // namespace tovrdb
