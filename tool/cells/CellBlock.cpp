#include "tool/cells/CellBlock.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr std::size_t kMostBytes = std::numeric_limits<std::int32_t>::max();  // the library counts them in 32 bits

std::string sizeText(const Rect& rect) {
  return std::to_string(rect.columns()) + " columns x " + std::to_string(rect.rows()) + " rows";
}

Rect rectOfShape(const std::vector<std::size_t>& shape, CellPair position) {
  try {
    return rectAt(position, shape[1], shape[0]);
  } catch (const std::invalid_argument& error) {
    throw ToolError(kFileProblem, std::string("the array does not fit: ") + error.what());
  }
}

}  // namespace

CellBlock blockFromArray(NpyArray array, const std::optional<Rect>& rect, const std::optional<CellPair>& position) {
  const std::string shape = shapeText(array.shape);
  if (array.shape.size() < 2 || array.bytes.empty()) {
    throw ToolError(kFileProblem, "an array of shape " + shape + " is no block: it takes (rows, columns, values) or " +
                                      "(rows, columns), none of them 0");
  }
  const Rect cells = rect ? *rect : rectOfShape(array.shape, *position);
  if (static_cast<std::uint64_t>(cells.rows()) != array.shape[0] ||
      static_cast<std::uint64_t>(cells.columns()) != array.shape[1]) {
    throw ToolError(kFileProblem, "an array of shape " + shape + " does not fit the rectangle " + toText(cells) +
                                      ", which has " + sizeText(cells) + ": its shape begins with (" +
                                      std::to_string(cells.rows()) + ", " + std::to_string(cells.columns()) + ")");
  }
  if (array.bytes.size() > kMostBytes) throw ToolError(kFileProblem, "the block is larger than 2 GiB: split it");
  const std::size_t cellBytes = array.bytes.size() / (array.shape[0] * array.shape[1]);
  return {cells, static_cast<std::int32_t>(cellBytes), std::move(array.bytes)};
}

CellBlock blockFromBytes(std::vector<unsigned char> bytes, const Rect& rect, std::int32_t cellBytes) {
  const auto size = static_cast<std::int64_t>(bytes.size());
  const std::int64_t rowBytes = rect.columns() * cellBytes;  // below 2^62
  if (bytes.size() > kMostBytes || size % rowBytes != 0 || size / rowBytes != rect.rows()) {
    throw ToolError(kFileProblem, std::to_string(size) + " bytes are not the " + sizeText(rect) + " of " +
                                      std::to_string(cellBytes) + " bytes each that " + toText(rect) + " takes");
  }
  return {rect, cellBytes, std::move(bytes)};
}

std::vector<std::size_t> blockShape(const Rect& rect, std::int32_t cellBytes, const Dtype& dtype) {
  const auto bytes = static_cast<std::size_t>(cellBytes);
  if (bytes == 0 || bytes % dtype.itemSize != 0) {
    throw ToolError(kFileProblem, "a cell of " + std::to_string(bytes) + " bytes is no whole number of " + dtype.descr +
                                      " values: choose another --dtype or leave it out");
  }
  return {static_cast<std::size_t>(rect.rows()), static_cast<std::size_t>(rect.columns()), bytes / dtype.itemSize};
}

}  // namespace tovrtool
