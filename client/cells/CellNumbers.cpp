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

using Write = std::vector<unsigned char> (*)(double);

using Read = void (*)(const unsigned char*, std::size_t, std::size_t, double*);

struct NamedType {
  const char* type;  // without the byte order: both the files and the machine are little-endian
  Read read;
  Write write;
};

constexpr NamedType kTypes[] = {
    {"u1", readAs<std::uint8_t>, bytesAs<std::uint8_t>},
    {"i1", readAs<std::int8_t>, bytesAs<std::int8_t>},
    {"u2", readAs<std::uint16_t>, bytesAs<std::uint16_t>},
    {"i2", readAs<std::int16_t>, bytesAs<std::int16_t>},
    {"u4", readAs<std::uint32_t>, bytesAs<std::uint32_t>},
    {"i4", readAs<std::int32_t>, bytesAs<std::int32_t>},
    {"u8", readAs<std::uint64_t>, bytesAs<std::uint64_t>},
    {"i8", readAs<std::int64_t>, bytesAs<std::int64_t>},
    {"f2", readAs<Half>, halfBytes},
    {"f4", readAs<float>, bytesAs<float>},
    {"f8", readAs<double>, bytesAs<double>},
};

const NamedType& typeOf(const Dtype& dtype) {
  for (const NamedType& known : kTypes) {
    if (dtype.descr.compare(1, std::string::npos, known.type) == 0) return known;
  }
  throw std::invalid_argument("numbers of type " + dtype.descr + " cannot be read");
}

}  // namespace

void readNumbers(const Dtype& dtype, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers) {
  typeOf(dtype).read(first, stride, count, numbers);
}

void readNumbers(const NumberForm& form, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers) {
  readNumbers(form.dtype, first, stride, count, numbers);
  if (!form.isScaled()) return;
  std::transform(numbers, numbers + count, numbers, [&](double number) { return form.scale.of(number); });
}

std::vector<unsigned char> cellOf(const Dtype& dtype, std::size_t values, double number) {
  const std::vector<unsigned char> item = typeOf(dtype).write(number);
  double back = 0;
  if (!item.empty()) readNumbers(dtype, item.data(), item.size(), 1, &back);
  const bool floating = dtype.descr[1] == 'f';
  if (item.empty() || (floating ? std::isfinite(back) != std::isfinite(number) : back != number)) {
    throw Error(kInvalid, "{} is not a number of type {}", numberText(number), dtypeName(dtype));
  }
  std::vector<unsigned char> cell;
  for (std::size_t i = 0; i < values; ++i) cell.insert(cell.end(), item.begin(), item.end());
  return cell;
}

void requireComponent(std::int32_t cellBytes, const Dtype& dtype, std::size_t component) {
  const std::size_t values = valuesPerCell(cellBytes, dtype);
  if (component >= values) {
    throw Error(kInvalid, "there is no component {}: a cell has the components 0 to {}", component, values - 1);
  }
}

void readRow(const CellBlock& block, const NumberForm& form, std::size_t component, const Rect& part, std::int32_t y,
             double* numbers) {
  readNumbers(form, block.at(part.left, y) + component * form.dtype.itemSize, static_cast<std::size_t>(block.cellBytes),
              static_cast<std::size_t>(columnsOf(part)), numbers);
}

}  // namespace tovrdb
