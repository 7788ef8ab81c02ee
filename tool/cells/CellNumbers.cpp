#include "tool/cells/CellNumbers.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "tool/system/ToolError.h"

namespace tovrtool {
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

using Read = void (*)(const unsigned char*, std::size_t, std::size_t, double*);

struct NamedRead {
  const char* type;  // without the byte order: both the files and the machine are little-endian
  Read read;
};

constexpr NamedRead kReads[] = {
    {"u1", readAs<std::uint8_t>},  {"i1", readAs<std::int8_t>},   {"u2", readAs<std::uint16_t>},
    {"i2", readAs<std::int16_t>},  {"u4", readAs<std::uint32_t>}, {"i4", readAs<std::int32_t>},
    {"u8", readAs<std::uint64_t>}, {"i8", readAs<std::int64_t>},  {"f2", readAs<Half>},
    {"f4", readAs<float>},         {"f8", readAs<double>},
};

}  // namespace

void readNumbers(const Dtype& dtype, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers) {
  for (const NamedRead& known : kReads) {
    if (dtype.descr.substr(1) == known.type) return known.read(first, stride, count, numbers);
  }
  throw std::invalid_argument("numbers of type " + dtype.descr + " cannot be read");
}

void requireComponent(std::int32_t cellBytes, const Dtype& dtype, std::size_t component) {
  const std::size_t values = valuesPerCell(cellBytes, dtype);
  if (component >= values) {
    throw ToolError(kUsage, "there is no component {}: a cell has the components 0 to {}", component, values - 1);
  }
}

void readRow(const CellBlock& block, const Dtype& dtype, std::size_t component, const Rect& part, std::int32_t y,
             double* numbers) {
  readNumbers(dtype, block.at(part.left, y) + component * dtype.itemSize, static_cast<std::size_t>(block.cellBytes),
              static_cast<std::size_t>(columnsOf(part)), numbers);
}

}  // namespace tovrtool
