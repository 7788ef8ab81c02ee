#include "client/cells/CellNumbers.h"

#include <fmt/format.h>

#include <Eigen/Core>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>

#include "client/base/Error.h"

namespace tovrdb {
namespace {

// Copies the numbers, since they may be unaligned.
template <class Number>
void readAs(const unsigned char* at, std::size_t stride, std::size_t count, double* numbers) {
  for (std::size_t i = 0; i < count; ++i, at += stride) {
    Number number;
    std::memcpy(&number, at, sizeof number);
    numbers[i] = static_cast<double>(number);
  }
}

// Rounds to a float whose last bit is odd unless the float is exact. Rounding that again gives the half nearest to the
// number, which rounding to the nearest float first does not (S. Boldo, G. Melquiond: When double rounding is odd,
// 2005).
float roundedToOdd(double number) {
  const auto nearest = static_cast<float>(number);
  std::uint32_t bits = 0;
  std::memcpy(&bits, &nearest, sizeof bits);
  if (bits % 2 == 1 || !std::isfinite(nearest) || static_cast<double>(nearest) == number) return nearest;
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  return std::nextafter(nearest, static_cast<double>(nearest) < number ? kInfinity : -kInfinity);
}

template <class Number>
std::vector<unsigned char> bytesOf(const Number& value) {
  std::vector<unsigned char> bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

template <class Number>
std::vector<unsigned char> bytesAs(double number) {
  using Limits = std::numeric_limits<Number>;
  if constexpr (Limits::is_integer) {  // beyond its limits a conversion is undefined
    const bool fits = number >= static_cast<double>(Limits::min()) && number < std::ldexp(1.0, Limits::digits);
    if (!fits) return {};
  }
  if constexpr (std::is_same_v<Number, Eigen::half>)
    return bytesOf(Eigen::half(roundedToOdd(number)));
  else
    return bytesOf(static_cast<Number>(number));
}

struct Codec {
  void (*read)(const unsigned char* at, std::size_t stride, std::size_t count, double* numbers);
  std::vector<unsigned char> (*write)(double number);  // empty if no such number exists
};

template <class Number>
constexpr Codec codecAs() {
  return {readAs<Number>, bytesAs<Number>};
}

Codec codecOf(NumberType type) {
  switch (type) {
    case NumberType::kUint8:
      return codecAs<std::uint8_t>();
    case NumberType::kInt8:
      return codecAs<std::int8_t>();
    case NumberType::kUint16:
      return codecAs<std::uint16_t>();
    case NumberType::kInt16:
      return codecAs<std::int16_t>();
    case NumberType::kUint32:
      return codecAs<std::uint32_t>();
    case NumberType::kInt32:
      return codecAs<std::int32_t>();
    case NumberType::kUint64:
      return codecAs<std::uint64_t>();
    case NumberType::kInt64:
      return codecAs<std::int64_t>();
    case NumberType::kFloat16:
      return codecAs<Eigen::half>();
    case NumberType::kFloat32:
      return codecAs<float>();
    case NumberType::kFloat64:
      break;
  }
  return codecAs<double>();
}

// Enough digits to read the same number back: 9 for 32-bit floats and less, 17 for 64-bit ones (IEEE 754).
int digitsOf(NumberType dtype) { return traitsOf(dtype).bytes < 8 && traitsOf(dtype).isFloating ? 9 : 17; }

std::string heading(std::size_t values) {
  std::string line = "column,row";
  for (std::size_t i = 0; i < values; ++i) line += fmt::format(",value{}", i);
  return line + "\n";
}

}  // namespace

void readNumbers(NumberType dtype, const unsigned char* first, std::size_t stride, std::size_t count, double* numbers) {
  codecOf(dtype).read(first, stride, count, numbers);
}

void readNumbers(const NumberForm& form, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers) {
  readNumbers(form.dtype, first, stride, count, numbers);
  if (!form.isScaled()) return;
  std::transform(numbers, numbers + count, numbers, [&](double number) { return form.scale.of(number); });
}

std::vector<unsigned char> cellOf(NumberType dtype, std::size_t values, double number) {
  const std::vector<unsigned char> item = codecOf(dtype).write(number);
  double back = 0;
  if (!item.empty()) readNumbers(dtype, item.data(), item.size(), 1, &back);
  if (item.empty() || (traitsOf(dtype).isFloating ? std::isfinite(back) != std::isfinite(number) : back != number)) {
    throw Error(kInvalid, "{} is not a number of type {}", numberText(number), nameOf(dtype));
  }
  std::vector<unsigned char> cell;
  for (std::size_t i = 0; i < values; ++i) cell.insert(cell.end(), item.begin(), item.end());
  return cell;
}

void requireComponent(std::int32_t cellBytes, NumberType dtype, std::size_t component) {
  const std::size_t values = valuesPerCell(cellBytes, dtype);
  if (component >= values) {
    throw Error(kInvalid, "there is no component {}: a cell has the components 0 to {}", component, values - 1);
  }
}

void readRow(const CellBlock& block, const NumberForm& form, std::size_t component, const Rect& part, std::int32_t y,
             double* numbers) {
  readNumbers(form, block.at(part.left, y) + component * traitsOf(form.dtype).bytes,
              static_cast<std::size_t>(block.cellBytes), static_cast<std::size_t>(columnsOf(part)), numbers);
}

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
