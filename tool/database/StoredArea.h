// The stored coefficient areas of a file and their cells.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tool/cells/Rect.h"
#include "tool/database/Session.h"

namespace tovrtool {

struct StoredArea {
  std::int64_t id = 0;
  std::int64_t screenId = 0;
  std::string screen;
  std::int32_t type = 0;
  std::int64_t number = 0;
  Rect rect;
  std::int64_t blockId = 0;
  std::int32_t cellBytes = 0;
};

struct StoredScreen {
  std::int64_t id = 0;
  std::string name;
  Rect rect;
};

// A rectangle of cells, row-major. Copies share the bytes.
struct Cells {
  Rect rect;
  std::int32_t cellBytes = 0;
  std::shared_ptr<const unsigned char> bytes;

  const unsigned char* row(std::int32_t y) const {
    return bytes.get() + (static_cast<std::int64_t>(y) - rect.top) * rect.columns() * cellBytes;
  }
};

// In the order in which they were stored. Throw ToolError on failure, also for rectangles that are none.
std::vector<StoredArea> storedAreas(Session& session);
std::vector<StoredScreen> storedScreens(Session& session);

// The areas of a type, of the named screen only unless `screen` is empty. Throws ToolError, which says what there is,
// when there are none.
std::vector<StoredArea> areasOfType(Session& session, std::int32_t type, const std::string& screen);

// The one that is meant: without a rectangle the only one, else the first that holds it, as `coef get` answers.
// Throws ToolError, which lists them, when that names none or several.
const StoredArea& chooseArea(const std::vector<StoredArea>& areas, const std::optional<Rect>& rect);

// The cells of a part of an area. Throws ToolError. REQUIRES: the area holds `rect`.
Cells readCells(Session& session, const StoredArea& area, const Rect& rect);

// "left, 0,0..63,31"
std::string toText(const StoredArea& area);

}  // namespace tovrtool
