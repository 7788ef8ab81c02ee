// A rectangle of cells: both edges inclusive, every int32 allowed.
#pragma once

#include <cstdint>

namespace tovr {

struct Rect {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

template <class Record>
constexpr Rect rectOf(const Record& record) {
  return {record.left, record.top, record.right, record.bottom};
}

constexpr bool operator==(const Rect& a, const Rect& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// Edges may touch. An inverted inner rectangle is held when its edges lie within.
constexpr bool holds(const Rect& outer, const Rect& inner) {
  return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
         inner.bottom <= outer.bottom;
}

}  // namespace tovr
