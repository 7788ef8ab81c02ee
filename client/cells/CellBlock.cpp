#include "client/cells/CellBlock.h"

#include <cstring>
#include <stdexcept>
#include <utility>

#include "client/base/Error.h"

namespace tovrdb {
namespace {

Rect rectOfShape(const std::vector<std::size_t>& shape, CellPair position) {
  try {
    return rectAt(position, shape[1], shape[0]);
  } catch (const std::invalid_argument& error) {
    throw Error(kFileProblem, "the array does not fit: {}", error.what());
  }
}

}  // namespace

bool fitsBlock(const Rect& rect, std::int32_t cellBytes) {
  return cellBytes > 0 && columnsOf(rect) <= kMostBlockBytes / cellBytes / rowsOf(rect);
}

CellBlock blockOf(const Rect& rect, std::int32_t cellBytes, std::vector<unsigned char> bytes) {
  const auto owner = std::make_shared<std::vector<unsigned char>>(std::move(bytes));
  return {rect, cellBytes, {owner, owner->data()}};
}

CellBlock blockFromArray(NpyArray array, const std::optional<Rect>& rect, const std::optional<CellPair>& position) {
  const std::string shape = shapeText(array.shape);
  if (array.shape.size() < 2 || array.bytes.empty()) {
    throw Error(
        kFileProblem,
        "an array of shape {} is not a block, which takes (rows, columns, values) or (rows, columns), none of them 0",
        shape);
  }
  const Rect cells = rect ? *rect : rectOfShape(array.shape, *position);
  if (static_cast<std::uint64_t>(rowsOf(cells)) != array.shape[0] ||
      static_cast<std::uint64_t>(columnsOf(cells)) != array.shape[1]) {
    throw Error(kFileProblem,
                "an array of shape {0} does not fit the rectangle {1}, which has {2} columns x {3} rows: its shape "
                "would begin with ({3}, {2})",
                shape, toText(cells), columnsOf(cells), rowsOf(cells));
  }
  if (array.bytes.size() > kMostBlockBytes) throw Error(kFileProblem, "the block is larger than 2 GiB: split it");
  const std::size_t cellBytes = array.bytes.size() / (array.shape[0] * array.shape[1]);
  return blockOf(cells, static_cast<std::int32_t>(cellBytes), std::move(array.bytes));
}

CellBlock blockFromBytes(std::vector<unsigned char> bytes, const Rect& rect, std::int32_t cellBytes) {
  if (bytes.size() > kMostBlockBytes || !fills(bytes.size(), rect, cellBytes)) {
    const double needed = static_cast<double>(columnsOf(rect)) * static_cast<double>(rowsOf(rect)) * cellBytes;
    throw Error(kFileProblem, "the rectangle {} ({} x {} cells of {} bytes) needs {:.0f} bytes; the input has {}",
                toText(rect), columnsOf(rect), rowsOf(rect), cellBytes, needed, bytes.size());
  }
  return blockOf(rect, cellBytes, std::move(bytes));
}

CellBlock cut(const CellBlock& whole, const Rect& rect) {
  if (rect == whole.rect) return whole;
  CellBlock part{rect, whole.cellBytes, nullptr};
  std::vector<unsigned char> bytes(part.size());
  unsigned char* to = bytes.data();
  for (std::int64_t y = rect.top; y <= rect.bottom; ++y, to += part.rowBytes()) {
    std::memcpy(to, whole.at(rect.left, static_cast<std::int32_t>(y)), part.rowBytes());
  }
  return blockOf(rect, whole.cellBytes, std::move(bytes));
}

std::size_t valuesPerCell(std::int32_t cellBytes, NumberType dtype) {
  const auto bytes = static_cast<std::size_t>(cellBytes);
  if (cellBytes <= 0 || bytes % traitsOf(dtype).bytes != 0) {
    throw Error(kFileProblem, "a cell of {} bytes is not a whole number of {} values", cellBytes, nameOf(dtype))
        .suggest(Remedy::kOtherNumberType);
  }
  return bytes / traitsOf(dtype).bytes;
}

std::vector<std::size_t> blockShape(const Rect& rect, std::int32_t cellBytes, NumberType dtype) {
  return {static_cast<std::size_t>(rowsOf(rect)), static_cast<std::size_t>(columnsOf(rect)),
          valuesPerCell(cellBytes, dtype)};
}

}  // namespace tovrdb
