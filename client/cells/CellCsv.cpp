#include "client/cells/CellCsv.h"

#include <fmt/format.h>

#include <iterator>
#include <vector>

#include "client/base/Error.h"
#include "client/cells/CellNumbers.h"

namespace tovrdb {
namespace {

// Enough digits to read the same number back: 9 for 32-bit floats and less, 17 for 64-bit ones (IEEE 754).
int digitsOf(NumberType dtype) { return traitsOf(dtype).bytes < 8 && traitsOf(dtype).isFloating ? 9 : 17; }

std::string heading(std::size_t values) {
  std::string line = "column,row";
  for (std::size_t i = 0; i < values; ++i) line += fmt::format(",value{}", i);
  return line + "\n";
}

}  // namespace

void writeCsv(const CellBlock& block, const NumberForm& form, const std::function<void(const std::string&)>& write) {
  const NumberType dtype = form.dtype;
  if (traitsOf(dtype).bytes == 8 && !traitsOf(dtype).isFloating) {
    throw Error(kInvalid, "64-bit whole numbers do not fit CSV's decimal numbers; write .npy instead");
  }
  const Rect& rect = block.rect;
  const std::size_t values = valuesPerCell(block.cellBytes, dtype);
  const int digits = form.isScaled() ? 17 : digitsOf(dtype);
  std::vector<double> numbers(static_cast<std::size_t>(columnsOf(rect)) * values);
  write(heading(values));
  for (std::int64_t y = rect.top; y <= rect.bottom; ++y) {
    readNumbers(form, block.at(rect.left, static_cast<std::int32_t>(y)), traitsOf(dtype).bytes, numbers.size(),
                numbers.data());
    std::string text;
    const auto end = std::back_inserter(text);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (i % values == 0) fmt::format_to(end, "{},{}", rect.left + static_cast<std::int64_t>(i / values), y);
      fmt::format_to(end, ",{:.{}g}", numbers[i], digits);
      if (i % values == values - 1) text += '\n';
    }
    write(text);
  }
}

}  // namespace tovrdb
