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

// Whether so many bytes are exactly the rectangle's cells; never for a rectangle or cells without any.
bool fills(std::uint64_t bytes, const Rect& rect, std::int64_t cellBytes);

// What both hold; nothing where they are apart.
std::optional<Rect> common(const Rect& one, const Rect& other);

// The smallest that holds both.
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

// The rectangle of `columns` x `rows` cells at `position`. Throws std::invalid_argument when no index reaches that far.
Rect rectAt(CellPair position, std::uint64_t columns, std::uint64_t rows);

// "0,0,63,31", as parseRect takes it
std::string toText(const Rect& rect);

// What of `rect` lies outside `bounds`, which `name` names: "one column and 2 rows beyond area 1, which ends at
// 959,539". Empty if nothing does.
std::string outsideText(const Rect& rect, const Rect& bounds, const std::string& name);

// Records of the library name the edges as Rect does, in an order of their own.
template <class Record>
void setRect(Record& record, const Rect& rect) {
  record.left = rect.left;
  record.top = rect.top;
  record.right = rect.right;
  record.bottom = rect.bottom;
}

}  // namespace tovrdb
