// The region crop at the edges of its numbers. Byte by byte it is fuzz/CropFuzz's to test.
#include <climits>

#include "manager/RegionCrop.h"
#include "tests/support/Fixture.h"

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

TEST(RegionCropTest, APlanTellsWhereTheCellsLie) {
  CropPlan plan;
  ASSERT_EQ(planCrop({10, 20, 19, 29}, {13, 22, 15, 24}, 2, 200, plan), 0);
  EXPECT_EQ(plan.bytes, 18);
  EXPECT_EQ(plan.rows, 3);
  EXPECT_EQ(plan.rowBytes, 6);
  EXPECT_EQ(plan.first, 46);
  EXPECT_EQ(plan.stride, 20);
  ASSERT_EQ(planCrop({10, 20, 19, 29}, {13, 22, 12, 24}, 2, 200, plan), 0);
  EXPECT_EQ(plan.bytes, 0);
  EXPECT_EQ(plan.rows, 0);
  EXPECT_EQ(plan.first, 0);
}

}  // namespace tovrtest
