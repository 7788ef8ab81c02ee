#include "client/cells/CellNumbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "client/base/Error.h"
#include "client/cells/NumberText.h"

namespace tovrdb {
namespace {

struct Half {
  std::uint16_t bits;
};

// IEEE 754 binary16.
double asDouble(Half half) {
  const int exponent = half.bits >> 10 & 0x1F;
  const int fraction = half.bits & 0x3FF;
  const double sign = (half.bits & 0x8000) != 0 ? -1.0 : 1.0;
  if (exponent == 0x1F) {
    return fraction != 0 ? std::numeric_limits<double>::quiet_NaN() : sign * std::numeric_limits<double>::infinity();
  }
  return sign * (exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(fraction + 1024, exponent - 25));
}

template <class Number>
double asDouble(Number number) {
  return static_cast<double>(number);
}

// Numbers lie anywhere in the bytes, so they are copied out.
template <class Number>
void readAs(const unsigned char* at, std::size_t stride, std::size_t count, double* numbers) {
  for (std::size_t i = 0; i < count; ++i, at += stride) {
    Number number;
    std::memcpy(&number, at, sizeof number);
    numbers[i] = asDouble(number);
  }
}

template <class Number>
std::vector<unsigned char> bytesAs(double number) {
  // Beyond these limits a conversion is not defined.
  using Limits = std::numeric_limits<Number>;
  const bool whole = Limits::is_integer && std::isfinite(number);
  if (Limits::is_integer &&
      (!whole || number < static_cast<double>(Limits::min()) || number >= std::ldexp(1.0, Limits::digits))) {
    return {};
  }
  const auto value = static_cast<Number>(number);
  std::vector<unsigned char> bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

// The nearest of all that there are.
std::vector<unsigned char> halfBytes(double number) {
  std::uint16_t nearest = 0x7E00;  // no number
  double least = std::numeric_limits<double>::infinity();
  for (unsigned int bits = 0; bits <= 0xFFFF; ++bits) {
    const double half = asDouble(Half{static_cast<std::uint16_t>(bits)});
    const double apart = half == number ? -1 : std::abs(half - number);
    if (!(apart < least)) continue;
    least = apart;
    nearest = static_cast<std::uint16_t>(bits);
  }
  return {static_cast<unsigned char>(nearest & 0xFF), static_cast<unsigned char>(nearest >> 8)};
}

struct Access {
  void (*read)(const unsigned char* at, std::size_t stride, std::size_t count, double* numbers);
  std::vector<unsigned char> (*write)(double number);  // empty if no such number exists
};

template <class Number>
constexpr Access accessAs() {
  return {readAs<Number>, bytesAs<Number>};
}

Access accessTo(NumberType type) {
  switch (type) {
    case NumberType::kUint8:
      return accessAs<std::uint8_t>();
    case NumberType::kInt8:
      return accessAs<std::int8_t>();
    case NumberType::kUint16:
      return accessAs<std::uint16_t>();
    case NumberType::kInt16:
      return accessAs<std::int16_t>();
    case NumberType::kUint32:
      return accessAs<std::uint32_t>();
    case NumberType::kInt32:
      return accessAs<std::int32_t>();
    case NumberType::kUint64:
      return accessAs<std::uint64_t>();
    case NumberType::kInt64:
      return accessAs<std::int64_t>();
    case NumberType::kFloat16:
      return {readAs<Half>, halfBytes};
    case NumberType::kFloat32:
      return accessAs<float>();
    case NumberType::kFloat64:
      break;
  }
  return accessAs<double>();
}

}  // namespace

void readNumbers(NumberType dtype, const unsigned char* first, std::size_t stride, std::size_t count, double* numbers) {
  accessTo(dtype).read(first, stride, count, numbers);
}

void readNumbers(const NumberForm& form, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers) {
  readNumbers(form.dtype, first, stride, count, numbers);
  if (!form.isScaled()) return;
  std::transform(numbers, numbers + count, numbers, [&](double number) { return form.scale.of(number); });
}

std::vector<unsigned char> cellOf(NumberType dtype, std::size_t values, double number) {
  const std::vector<unsigned char> item = accessTo(dtype).write(number);
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

}  // namespace tovrdb
