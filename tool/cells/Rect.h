// Rectangles and sizes of cells as they are typed and shown.
#pragma once

#include <cstdint>
#include <string>

namespace tovrtool {

// Cell indices from 0, both edges inclusive.
struct Rect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;

  std::int64_t columns() const { return std::int64_t{right} - left + 1; }
  std::int64_t rows() const { return std::int64_t{bottom} - top + 1; }
  bool holds(const Rect& inner) const {
    return inner.left >= left && inner.top >= top && inner.right <= right && inner.bottom <= bottom;
  }
};

struct CellPair {
  std::int32_t x = 0;
  std::int32_t y = 0;
};

// "L,T,R,B"; edges from 0, left <= right, top <= bottom. Throw std::invalid_argument with the reason otherwise.
Rect parseRect(const std::string& text);
CellPair parsePosition(const std::string& text);  // "L,T", from 0
CellPair parseSize(const std::string& text);      // "COLUMNSxROWS", from 1

// The rectangle of `columns` x `rows` cells at `position`. Throws std::invalid_argument when no index reaches that far.
Rect rectAt(CellPair position, std::uint64_t columns, std::uint64_t rows);

// "0,0..63,31"
std::string toText(const Rect& rect);

// Records of the library name the edges as Rect does, in an order of their own.
template <class Record>
Rect rectOf(const Record& record) {
  return {record.left, record.top, record.right, record.bottom};
}

template <class Record>
void setRect(Record& record, const Rect& rect) {
  record.left = rect.left;
  record.top = rect.top;
  record.right = rect.right;
  record.bottom = rect.bottom;
}

}  // namespace tovrtool
