// The types that numbers in cells can have, and numbers as text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovrdb {

enum class NumberType : std::uint8_t {
  kUint8,
  kInt8,
  kUint16,
  kInt16,
  kUint32,
  kInt32,
  kUint64,
  kInt64,
  kFloat16,
  kFloat32,
  kFloat64
};

struct NumberTraits {
  std::string_view name;   // NumPy's
  std::string_view descr;  // NumPy's type string: byte order, kind, bytes
  std::size_t bytes = 1;
  bool isSigned = false;
  bool isFloating = false;
};

// In the order of NumberType. Both files and machines are little-endian.
constexpr NumberTraits kNumberTypes[] = {
    {"uint8", "|u1", 1, false, false},  {"int8", "|i1", 1, true, false},    {"uint16", "<u2", 2, false, false},
    {"int16", "<i2", 2, true, false},   {"uint32", "<u4", 4, false, false}, {"int32", "<i4", 4, true, false},
    {"uint64", "<u8", 8, false, false}, {"int64", "<i8", 8, true, false},   {"float16", "<f2", 2, true, true},
    {"float32", "<f4", 4, true, true},  {"float64", "<f8", 8, true, true},
};

constexpr const NumberTraits& traitsOf(NumberType type) { return kNumberTypes[static_cast<std::size_t>(type)]; }

// Takes NumPy's names (uint16, float32, ...) and type strings (<u2). Throws std::invalid_argument for others.
NumberType parseNumberType(const std::string& text);

// NumPy's name: "uint16".
std::string nameOf(NumberType type);

// The name of every type.
std::vector<std::string> numberTypeNames();

}  // namespace tovrdb
