#include "client/cells/Rect.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace tovrdb {
namespace {

constexpr std::int32_t kLastCell = std::numeric_limits<std::int32_t>::max();

// All of `text` as numbers from `least`, each followed by its separator; the last one has none.
std::vector<std::int32_t> numbers(const std::string& text, std::initializer_list<std::string_view> separators,
                                  std::int32_t least, const char* form) {
  const std::invalid_argument error(
      fmt::format("'{}' is not of the form {}, whole numbers from {}", text, form, least));
  std::vector<std::int32_t> found;
  std::string_view rest = text;
  for (const std::string_view separator : separators) {
    std::int32_t number = 0;
    const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (parsed.ec != std::errc() || number < least) throw error;
    rest.remove_prefix(static_cast<std::size_t>(parsed.ptr - rest.data()));
    if (rest.substr(0, separator.size()) != separator) throw error;
    rest.remove_prefix(separator.size());
    found.push_back(number);
  }
  if (!rest.empty()) throw error;
  return found;
}

std::string countText(std::int64_t columns, std::int64_t rows) {
  const auto text = [](std::int64_t count, const char* one, const char* several) {
    return count == 1 ? std::string("one ") + one : fmt::format("{} {}", count, several);
  };
  if (rows <= 0) return text(columns, "column", "columns");
  if (columns <= 0) return text(rows, "row", "rows");
  return text(columns, "column", "columns") + " and " + text(rows, "row", "rows");
}

}  // namespace

bool isSound(const Rect& rect) {
  return rect.left >= 0 && rect.top >= 0 && rect.left <= rect.right && rect.top <= rect.bottom;
}

// The product of three numbers of 32 bits can exceed 64.
bool fills(std::uint64_t bytes, const Rect& rect, std::int64_t cellBytes) {
  if (columnsOf(rect) <= 0 || rowsOf(rect) <= 0 || cellBytes <= 0) return false;
  const auto rowBytes = static_cast<std::uint64_t>(columnsOf(rect) * cellBytes);  // below 2^63
  return bytes % rowBytes == 0 && bytes / rowBytes == static_cast<std::uint64_t>(rowsOf(rect));
}

std::optional<Rect> common(const Rect& one, const Rect& other) {
  const Rect both{std::max(one.left, other.left), std::max(one.top, other.top), std::min(one.right, other.right),
                  std::min(one.bottom, other.bottom)};
  if (both.left > both.right || both.top > both.bottom) return std::nullopt;
  return both;
}

Rect united(const Rect& one, const Rect& other) {
  return {std::min(one.left, other.left), std::min(one.top, other.top), std::max(one.right, other.right),
          std::max(one.bottom, other.bottom)};
}

Rect parseRect(const std::string& text) {
  const char* const middle = text.find("..") != std::string::npos ? ".." : ",";
  const auto edges = numbers(text, {",", middle, ",", ""}, 0, "L,T,R,B");
  const Rect rect{edges[0], edges[1], edges[2], edges[3]};
  if (!isSound(rect)) {
    throw std::invalid_argument(
        fmt::format("'{}' is inverted: both edges belong to the rectangle, so L <= R and T <= B", text));
  }
  return rect;
}

Rect rectOfEdges(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom) {
  return parseRect(fmt::format("{},{},{},{}", left, top, right, bottom));
}

CellPair parsePosition(const std::string& text) {
  const auto values = numbers(text, {",", ""}, 0, "L,T");
  return {values[0], values[1]};
}

CellPair parseSize(const std::string& text) {
  const auto values = numbers(text, {"x", ""}, 1, "COLUMNSxROWS");
  return {values[0], values[1]};
}

Rect rectAt(CellPair position, std::uint64_t columns, std::uint64_t rows) {
  const auto room = [](std::int32_t from) { return static_cast<std::uint64_t>(kLastCell - from) + 1; };
  if (columns == 0 || rows == 0 || columns > room(position.x) || rows > room(position.y)) {
    throw std::invalid_argument(
        fmt::format("{} x {} cells do not fit at {},{}", columns, rows, position.x, position.y));
  }
  return {position.x, position.y, static_cast<std::int32_t>(position.x + static_cast<std::int64_t>(columns) - 1),
          static_cast<std::int32_t>(position.y + static_cast<std::int64_t>(rows) - 1)};
}

std::string toText(const Rect& rect) {
  return fmt::format("{},{},{},{}", rect.left, rect.top, rect.right, rect.bottom);
}

std::string outsideText(const Rect& rect, const Rect& bounds, const std::string& name) {
  std::string text;
  const std::int64_t left = std::int64_t{bounds.left} - rect.left, top = std::int64_t{bounds.top} - rect.top;
  const std::int64_t right = std::int64_t{rect.right} - bounds.right, down = std::int64_t{rect.bottom} - bounds.bottom;
  if (left > 0 || top > 0) {
    text = fmt::format("{} before {}, which begins at {},{}", countText(left, top), name, bounds.left, bounds.top);
  }
  if (right > 0 || down > 0) {
    text += fmt::format("{}{} beyond {}, which ends at {},{}", text.empty() ? "" : ", and ", countText(right, down),
                        name, bounds.right, bounds.bottom);
  }
  return text;
}

}  // namespace tovrdb
