// A rectangle of cells as it lies in files and in stored blocks: rows x columns x values of one cell.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NpyFile.h"
#include "client/cells/Rect.h"

namespace tovrdb {

// The library counts a block's bytes in 32 bits.
constexpr std::int64_t kMostBlockBytes = std::numeric_limits<std::int32_t>::max();

// Whether one block may have so many cells. REQUIRES: the rectangle holds cells.
bool fitsBlock(const Rect& rect, std::int32_t cellBytes);

// Row-major. Copies share the bytes.
struct CellBlock {
  Rect rect{};
  std::int32_t cellBytes = 0;
  std::shared_ptr<unsigned char[]> bytes;

  std::size_t rowBytes() const { return static_cast<std::size_t>(columnsOf(rect) * cellBytes); }
  std::size_t size() const { return static_cast<std::size_t>(rowsOf(rect)) * rowBytes(); }
  // The cell of column `x`, row `y`: the position of its first byte, and its bytes. REQUIRES: the rectangle holds it.
  std::size_t offset(std::int32_t x, std::int32_t y) const {
    return static_cast<std::size_t>(y - rect.top) * rowBytes() +
           static_cast<std::size_t>(x - rect.left) * static_cast<std::size_t>(cellBytes);
  }
  const unsigned char* at(std::int32_t x, std::int32_t y) const { return bytes.get() + offset(x, y); }
};

// REQUIRES: the bytes fill the rectangle.
CellBlock blockOf(const Rect& rect, std::int32_t cellBytes, std::vector<unsigned char> bytes);

// The array as the cells of `rect`, or of a rectangle of its own size at `position`. Throws Error if its shape is not
// rows x columns (x values). REQUIRES: one of the two is given.
CellBlock blockFromArray(NpyArray array, const std::optional<Rect>& rect, const std::optional<CellPair>& position);

// The bytes as cells of `rect`. Throws Error if their number is not exactly that of the cells.
CellBlock blockFromBytes(std::vector<unsigned char> bytes, const Rect& rect, std::int32_t cellBytes);

// A part of the cells. REQUIRES: the block's rectangle holds `rect`.
CellBlock cut(const CellBlock& whole, const Rect& rect);

// How many values of type `dtype` a cell holds. Throws Error if that is not a whole number.
std::size_t valuesPerCell(std::int32_t cellBytes, NumberType dtype);

// rows x columns x values of type `dtype`. Throws Error as valuesPerCell does.
std::vector<std::size_t> blockShape(const Rect& rect, std::int32_t cellBytes, NumberType dtype);

}  // namespace tovrdb
