// The region crop against a byte-by-byte oracle, and at the edges of its numbers.
#include <climits>
#include <map>
#include <random>

#include "manager/RegionCrop.h"
#include "tests/Fixture.h"

namespace tovrtest {

using Result = std::pair<int, Bytes>;  // the code, -1 for std::bad_alloc; the cells

std::vector<int> listOf(const Rect& r) { return {r.left, r.top, r.right, r.bottom}; }

// `source` is handed over in a buffer of exactly `size` bytes: a read beyond it is the address sanitizer's to report.
Result crop(const Rect& stored, const Rect& requested, int cellBytes, const Bytes& source) {
  Bytes exact = source;
  exact.shrink_to_fit();
  const CoefBuffer block{cellBytes, exact.data(), static_cast<int>(exact.size())};
  std::unique_ptr<unsigned char[]> out;
  try {
    const int code = cropRegion(block, stored, requested, out);
    if (code != 0) return {out == nullptr ? code : -2, {}};
  } catch (const std::bad_alloc&) {
    return {-1, {}};
  }
  return {0, Bytes(out.get(), out.get() + regionBytes(requested, cellBytes))};
}

// The rule, byte by byte: containment is signed; the walk compares sign-extended coordinates as unsigned numbers.
Result oracle(const Rect& stored, const Rect& requested, int cellBytes, const Bytes& source) {
  const auto u = [](int coordinate) { return static_cast<std::uint64_t>(std::int64_t{coordinate}); };
  if (requested.left < stored.left || requested.top < stored.top || requested.right > stored.right ||
      requested.bottom > stored.bottom) {
    return {4109, {}};
  }
  const std::int64_t width = requested.right - requested.left + 1;
  const std::int64_t height = requested.bottom - requested.top + 1;
  const std::int64_t size = height * width * cellBytes;
  if (size > static_cast<std::int64_t>(source.size())) return {4110, {}};
  if (size < 0) return {-1, {}};
  Bytes out(static_cast<std::size_t>(size));
  if (width <= 0 || height <= 0) return {0, out};  // an inverted request has no cells, whatever its edges' signs
  // Counted past the last cell only in thought: behind -1, the largest unsigned number, the walk would start over.
  for (int y = stored.top; u(y) <= u(stored.bottom) && y <= stored.bottom; ++y) {
    for (int x = stored.left; u(x) <= u(stored.right) && x <= stored.right; ++x) {
      const bool inside = u(requested.top) <= u(y) && u(y) <= u(requested.bottom) && u(requested.left) <= u(x) &&
                          u(x) <= u(requested.right);
      for (int i = 0; inside && i < cellBytes; ++i) {
        const int from = ((stored.right - stored.left + 1) * (y - stored.top) + (x - stored.left)) * cellBytes + i;
        const auto to = (width * (y - requested.top) + (x - requested.left)) * cellBytes + i;
        if (from >= static_cast<int>(source.size())) return {4110, {}};
        out[static_cast<std::size_t>(to)] = source[static_cast<std::size_t>(from)];
      }
    }
  }
  return {0, out};
}

TEST(RegionCropTest, AgreesWithTheOracleOnRandomRectangles) {
  std::mt19937 random(20240229);
  const auto number = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  std::map<int, int> met;
  for (int round = 0; round < 40000; ++round) {
    const int left = number(-6, 4);
    const int top = number(-6, 4);
    const Rect stored{left, top, left + number(-2, 6), top + number(-2, 6)};
    // Mostly inside, at times a cell beyond an edge or inverted.
    const Rect requested{left + number(-1, 4), top + number(-1, 4), stored.right - number(-1, 4),
                         stored.bottom - number(-1, 4)};
    const int cellBytes = number(0, 4);
    const std::int64_t whole = std::max<std::int64_t>(regionBytes(stored, cellBytes), 0);
    const Bytes source = pattern(static_cast<std::size_t>(whole * number(0, 5) / 4), 9);  // short, exact or longer
    const Result expected = oracle(stored, requested, cellBytes, source);
    ASSERT_EQ(crop(stored, requested, cellBytes, source), expected)
        << testing::PrintToString(std::pair(listOf(stored), listOf(requested))) << cellBytes << " " << source.size();
    ++met[expected.second.empty() ? expected.first : 1];
  }
  for (const int outcome : {1, 0, -1, 4109, 4110}) EXPECT_GT(met[outcome], 1000);  // 1: cells were copied
}

TEST(RegionCropTest, KeepsItsHeadAtTheEdgesOfItsNumbers) {
  constexpr Rect kAll{INT_MIN, INT_MIN, INT_MAX, INT_MAX};
  constexpr Rect kPositive{0, 0, INT_MAX, INT_MAX};
  constexpr Rect kNegative{INT_MIN, INT_MIN, -1, -1};
  const Bytes four = {1, 2, 3, 4};
  struct {
    Rect stored;
    Rect requested;
    int cellBytes;
    Result expected;
  } const cases[] = {
      {kAll, kAll, 1, {4110, {}}},                                       // 2^64 bytes
      {kAll, {0, 0, 65535, 65535}, 1, {4110, {}}},                       // 2^32: 0 in 32 bits
      {kAll, {0, 0, 0, 0}, INT_MAX, {4110, {}}},                         //
      {kAll, {0, 0, 1, 0}, 2, {0, Bytes(4)}},                            // reaches from negative to positive: no cells
      {kPositive, {0, 0, 3, 0}, 1, {0, four}},                           //
      {kPositive, {INT_MAX, INT_MAX, INT_MAX, INT_MAX}, 1, {4110, {}}},  // the last cell of a short block
      {kPositive, {0, 1, 0, 1}, 1, {4110, {}}},                          // the second row of a short block
      {kPositive, {0, 0, 0, 1}, 2, {4110, {}}},                          // fits, but its second row is not there
      {kNegative, {INT_MIN, INT_MIN, INT_MIN + 1, INT_MIN}, 2, {0, four}},
      {kNegative, {-1, -1, -1, -1}, 1, {4110, {}}},
      {kAll, {INT_MAX, INT_MAX, INT_MIN, INT_MIN}, 1, {4110, {}}},  // inverted twice: large and positive
      {kAll, {INT_MAX, 0, INT_MIN, 0}, INT_MAX, {-1, {}}},          // inverted once: negative
      {kAll, {4, 0, 3, INT_MAX}, INT_MAX, {0, {}}},                 // inverted by one cell: nothing
      {kPositive, {0, 0, 3, 0}, -1, {-1, {}}},                      //
      {{0, 0, 3, 3}, {-1, 0, 3, 3}, 1, {4109, {}}},
      {{0, 0, 3, 3}, {0, -1, 3, 3}, 1, {4109, {}}},
      {{0, 0, 3, 3}, {0, 0, 4, 3}, 1, {4109, {}}},
      {{0, 0, 3, 3}, {0, 0, 3, 4}, 1, {4109, {}}},
      {{3, 3, -3, -3}, {3, 3, -3, -3}, 1, {4110, {}}},     // 25 cells of an inverted rectangle
      {{1, 1, -1, -1}, {1, 1, -1, -1}, 4, {0, Bytes(4)}},  // one cell by its size, none by its edges
  };
  for (const auto& c : cases) {
    EXPECT_EQ(crop(c.stored, c.requested, c.cellBytes, four), c.expected)
        << testing::PrintToString(std::pair(listOf(c.stored), listOf(c.requested))) << c.cellBytes;
  }
}

}  // namespace tovrtest
