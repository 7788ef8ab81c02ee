#include "tool/cells/Rect.h"

#include <charconv>
#include <limits>
#include <stdexcept>
#include <vector>

namespace tovrtool {
namespace {

constexpr std::int32_t kLastCell = std::numeric_limits<std::int32_t>::max();

// All of `text` as `count` numbers from `least`, with `separator` between them.
std::vector<std::int32_t> numbers(const std::string& text, char separator, std::size_t count, std::int32_t least,
                                  const char* form) {
  const std::invalid_argument error("'" + text + "' is not of the form " + form + ", whole numbers from " +
                                    std::to_string(least));
  std::vector<std::int32_t> found;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0 && (at == end || *at++ != separator)) throw error;
    std::int32_t number = 0;
    const auto parsed = std::from_chars(at, end, number);
    if (parsed.ec != std::errc() || number < least) throw error;
    at = parsed.ptr;
    found.push_back(number);
  }
  if (at != end) throw error;
  return found;
}

}  // namespace

Rect parseRect(const std::string& text) {
  const auto edges = numbers(text, ',', 4, 0, "L,T,R,B");
  const Rect rect{edges[0], edges[1], edges[2], edges[3]};
  if (rect.left > rect.right || rect.top > rect.bottom) {
    throw std::invalid_argument("'" + text + "' is inverted: both edges belong to the rectangle, so L <= R and T <= B");
  }
  return rect;
}

CellPair parsePosition(const std::string& text) {
  const auto values = numbers(text, ',', 2, 0, "L,T");
  return {values[0], values[1]};
}

CellPair parseSize(const std::string& text) {
  const auto values = numbers(text, 'x', 2, 1, "COLUMNSxROWS");
  return {values[0], values[1]};
}

Rect rectAt(CellPair position, std::uint64_t columns, std::uint64_t rows) {
  const auto room = [](std::int32_t from) { return static_cast<std::uint64_t>(kLastCell - from) + 1; };
  if (columns == 0 || rows == 0 || columns > room(position.x) || rows > room(position.y)) {
    throw std::invalid_argument(std::to_string(columns) + " x " + std::to_string(rows) + " cells do not fit at " +
                                std::to_string(position.x) + "," + std::to_string(position.y));
  }
  return {position.x, position.y, static_cast<std::int32_t>(position.x + static_cast<std::int64_t>(columns) - 1),
          static_cast<std::int32_t>(position.y + static_cast<std::int64_t>(rows) - 1)};
}

std::string toText(const Rect& rect) {
  return std::to_string(rect.left) + "," + std::to_string(rect.top) + ".." + std::to_string(rect.right) + "," +
         std::to_string(rect.bottom);
}

}  // namespace tovrtool
