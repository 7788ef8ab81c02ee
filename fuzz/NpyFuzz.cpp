// The reader of .npy files: what it takes has as many bytes as its shape and type say, and is written back the same.
#include <algorithm>
#include <optional>

#include "client/base/Error.h"
#include "client/cells/CellBlock.h"
#include "client/cells/NpyFile.h"
#include "fuzz/Choices.h"
#include "fuzz/Target.h"

namespace tovrfuzz {
namespace {

std::optional<tovrdb::NpyArray> parsed(const Bytes& file) {
  try {
    return tovrdb::parseNpy(file, "input");
  } catch (const tovrdb::Error&) {
    return std::nullopt;
  }
}

Bytes fileOf(const tovrdb::NpyArray& array) {
  const std::string header = tovrdb::npyHeader(array.dtype, array.shape);
  Bytes file(header.begin(), header.end());
  file.insert(file.end(), array.bytes.begin(), array.bytes.end());
  return file;
}

bool hasItsSize(const tovrdb::NpyArray& array) {
  std::size_t left = array.bytes.size();
  if (left == 0) return std::count(array.shape.begin(), array.shape.end(), std::size_t{0}) > 0;
  for (const std::size_t extent : array.shape) {
    if (extent == 0 || left % extent != 0) return false;
    left /= extent;
  }
  return left == traitsOf(array.dtype).bytes;
}

void testBlock(const tovrdb::NpyArray& array) {
  try {
    const tovrdb::CellBlock block = tovrdb::blockFromArray(array, std::nullopt, tovrdb::CellPair{});
    require(tovrdb::fills(array.bytes.size(), block.rect, block.cellBytes), "the cells do not fill their rectangle");
    require(std::equal(array.bytes.begin(), array.bytes.end(), block.bytes.get()), "a block of other cells");
  } catch (const tovrdb::Error&) {  // no block has that shape
  }
}

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  const auto array = parsed(Bytes(data, data + size));
  if (!array) return 0;
  require(hasItsSize(*array), "an array is not as large as it says");
  const auto again = parsed(fileOf(*array));
  require(again && again->shape == array->shape && again->dtype == array->dtype && again->bytes == array->bytes,
          "an array does not come back");
  testBlock(*array);
  return 0;
}
