#include "tool/cells/CellCsv.h"

#include <cstdio>
#include <vector>

#include "tool/cells/CellBlock.h"
#include "tool/cells/CellNumbers.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

// Enough digits to read the same number back: 9 for 32-bit floats and less, 17 for 64-bit ones (IEEE 754).
std::string numberText(double value, const Dtype& dtype) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*g", dtype.itemSize < 8 && dtype.descr[1] == 'f' ? 9 : 17, value);
  return text;
}

std::string heading(std::size_t values) {
  std::string line = "column,row";
  for (std::size_t i = 0; i < values; ++i) line += ",value" + std::to_string(i);
  return line + "\n";
}

}  // namespace

void writeCsv(const unsigned char* cells, const Rect& rect, std::int32_t cellBytes, const Dtype& dtype,
              const std::function<void(const std::string&)>& write) {
  if (dtype.itemSize == 8 && dtype.descr[1] != 'f') {
    throw ToolError(kUsage, "64-bit whole numbers do not fit CSV's decimal numbers; write .npy instead");
  }
  const std::vector<std::size_t> shape = blockShape(rect, cellBytes, dtype);
  const std::size_t values = shape.size() > 2 ? shape[2] : 1;
  std::vector<double> numbers(shape[1] * values);
  write(heading(values));
  for (std::size_t row = 0; row < shape[0]; ++row) {
    const std::size_t rowBytes = shape[1] * static_cast<std::size_t>(cellBytes);
    readNumbers(dtype, cells + row * rowBytes, dtype.itemSize, numbers.size(), numbers.data());
    std::string text;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (i % values == 0) {
        text += std::to_string(rect.left + static_cast<std::int64_t>(i / values)) + ',' +
                std::to_string(rect.top + static_cast<std::int64_t>(row));
      }
      text += ',' + numberText(numbers[i], dtype);
      if (i % values == values - 1) text += '\n';
    }
    write(text);
  }
}

}  // namespace tovrtool
