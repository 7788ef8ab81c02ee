// Rectangles and sizes of cells: the library's rectangle, how it is typed and shown, and what it holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "manager/Rectangle.h"

namespace tovrdb {

using tovr::Rect;  // cell indices, both edges inclusive
using tovr::rectOf;

constexpr std::int64_t columnsOf(const Rect& rect) { return std::int64_t{rect.right} - rect.left + 1; }
constexpr std::int64_t rowsOf(const Rect& rect) { return std::int64_t{rect.bottom} - rect.top + 1; }

// Whether cells can lie there: no edge is negative, and left <= right, top <= bottom.
bool isSound(const Rect& rect);

// Whether the rectangle's cells have exactly so many bytes; false for a rectangle without cells or cells without bytes.
bool fills(std::uint64_t bytes, const Rect& rect, std::int64_t cellBytes);

// The intersection; empty if there is none.
std::optional<Rect> common(const Rect& one, const Rect& other);

// The smallest rectangle that contains both.
Rect united(const Rect& one, const Rect& other);

struct CellPair {
  std::int32_t x = 0;
  std::int32_t y = 0;
};

// "L,T,R,B" or "L,T..R,B"; edges from 0, left <= right, top <= bottom. Throw std::invalid_argument with the reason
// otherwise.
Rect parseRect(const std::string& text);
CellPair parsePosition(const std::string& text);  // "L,T", from 0
CellPair parseSize(const std::string& text);      // "COLUMNSxROWS", from 1

// The rectangle of these edges, which may be any numbers. Throws std::invalid_argument as parseRect does.
Rect rectOfEdges(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom);

// The rectangle of `columns` x `rows` cells at `position`. Throws std::invalid_argument if it exceeds the range of
// indices.
Rect rectAt(CellPair position, std::uint64_t columns, std::uint64_t rows);

// "0,0,63,31", as parseRect takes it
std::string toText(const Rect& rect);

// How `rect` exceeds `bounds`, which are those of `name`: "one column and 2 rows beyond area 1, which ends at
// 959,539". Empty if it does not.
std::string outsideText(const Rect& rect, const Rect& bounds, const std::string& name);

// Records of the library have the edges of a Rect in another order.
template <class Record>
void setRect(Record& record, const Rect& rect) {
  record.left = rect.left;
  record.top = rect.top;
  record.right = rect.right;
  record.bottom = rect.bottom;
}

}  // namespace tovrdb
