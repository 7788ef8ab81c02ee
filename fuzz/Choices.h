// The bytes of an input as a row of choices. Every input is a valid one: once its bytes are used up, all choices are 0.
#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace tovrfuzz {

using Bytes = std::vector<unsigned char>;

class Choices {
 public:
  Choices(const std::uint8_t* data, std::size_t size)
      : next_(data), end_(data + size), hash_(std::accumulate(data, data + size, kHashBasis, mixed)) {}

  // True for about one input in `count`, which the fuzzer cannot steer to: for what takes long.
  bool isOneIn(unsigned int count) const { return hash_ % count == 0; }

  bool isUsedUp() const { return next_ == end_; }
  unsigned char byte() { return isUsedUp() ? static_cast<unsigned char>(0) : *next_++; }
  bool flag() { return (byte() & 1) != 0; }

  // From 0 to `count` - 1. REQUIRES: count > 0.
  std::size_t below(std::size_t count) {
    std::size_t value = byte();
    for (std::size_t range = 256; range < count; range *= 256) value = value * 256 + byte();
    return value % count;
  }

  // One of a list.
  template <class Item, std::size_t kCount>
  const Item& oneOf(const Item (&items)[kCount]) {
    return items[below(kCount)];
  }

  // Any int; small ones and the ends of the range come up most.
  std::int32_t number() {
    constexpr std::int32_t kEnds[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, 1 << 30, 1 << 16};
    const int kind = byte();
    if (kind < 128) return kind - 32;
    if (kind < 192) return oneOf(kEnds);
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i) bits = bits << 8 | byte();
    return static_cast<std::int32_t>(bits);
  }

  // The next bytes, fewer where fewer are left.
  Bytes take(std::size_t most) {
    const std::uint8_t* const begin = next_;
    next_ += std::min(most, static_cast<std::size_t>(end_ - next_));
    return {begin, next_};
  }
  Bytes rest() { return take(SIZE_MAX); }

 private:
  // Fowler-Noll-Vo, 1a, 32 bits; folded, for the low bits of its products mix little.
  static constexpr std::uint32_t kHashBasis = 2166136261;
  static std::uint32_t mixed(std::uint32_t hash, std::uint8_t byte) {
    hash = (hash ^ byte) * 16777619;
    return hash ^ hash >> 15;
  }

  const std::uint8_t* next_;
  const std::uint8_t* end_;
  std::uint32_t hash_;
};

// Bytes without a repetition that a wrong offset could hide behind.
inline Bytes noise(std::size_t size, unsigned int seed) {
  Bytes bytes(size);
  std::uint32_t state = seed;
  for (unsigned char& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<unsigned char>(state >> 24);
  }
  return bytes;
}

}  // namespace tovrfuzz
