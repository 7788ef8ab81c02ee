// A rectangle of cells as it lies in files: rows x columns x values of one cell.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tool/cells/NpyFile.h"
#include "tool/cells/Rect.h"

namespace tovrtool {

struct CellBlock {
  Rect rect;
  std::int32_t cellBytes = 0;
  std::vector<unsigned char> bytes;  // row-major
};

// The array as the cells of `rect`, or of the rectangle of its own size at `position`. Throws ToolError when the
// array's shape is not rows x columns (x values). REQUIRES: one of the two is given.
CellBlock blockFromArray(NpyArray array, const std::optional<Rect>& rect, const std::optional<CellPair>& position);

// The bytes as cells of `rect`. Throws ToolError when they are not exactly as many.
CellBlock blockFromBytes(std::vector<unsigned char> bytes, const Rect& rect, std::int32_t cellBytes);

// rows x columns x values of type `dtype`. Throws ToolError when a cell is no whole number of them.
std::vector<std::size_t> blockShape(const Rect& rect, std::int32_t cellBytes, const Dtype& dtype);

}  // namespace tovrtool
