// The region crop where coordinates count as unsigned. Every other cut, byte by byte and at the edges of its numbers,
// is fuzz/CropFuzz's to test.
#include <climits>

#include "manager/RegionCrop.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr int kThrown = -1;
constexpr Rect kEverywhere{INT_MIN, INT_MIN, INT_MAX, INT_MAX};
constexpr Rect kPositive{0, 0, INT_MAX, INT_MAX};

struct Crop {
  const char* name;
  Rect stored, requested;
  int cellBytes;
  int code;
  Bytes cells;
};

// Crops the block of the bytes 1, 2, 3, 4.
void expectCrops(const std::vector<Crop>& crops) {
  for (const Crop& crop : crops) {
    SCOPED_TRACE(crop.name);
    Bytes block = {1, 2, 3, 4};  // exactly: a read beyond it is the address sanitizer's to report
    std::unique_ptr<unsigned char[]> out;
    int code = kThrown;
    try {
      code = cropRegion({crop.cellBytes, block.data(), 4}, crop.stored, crop.requested, out);
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(code, crop.code);
    ASSERT_EQ(out != nullptr, crop.code == kOk);
    if (!out) continue;
    EXPECT_EQ(Bytes(out.get(), out.get() + regionBytes(crop.requested, crop.cellBytes)), crop.cells);
  }
}

TEST(RegionCropTest, AStoredRectangleFromNegativeToPositiveHasNoCells) {
  expectCrops({{"two cells", kEverywhere, {0, 0, 1, 0}, 2, kOk, Bytes(4)}});
}

TEST(RegionCropTest, InvertedRectanglesHaveTheSizeOfTheirProduct) {
  expectCrops({{"twice", kEverywhere, {INT_MAX, INT_MAX, INT_MIN, INT_MIN}, 1, kBlockTooSmall, {}},
               {"once: negative", kEverywhere, {INT_MAX, 0, INT_MIN, 0}, INT_MAX, kThrown, {}},
               {"a negative cell", kPositive, {0, 0, 3, 0}, -1, kThrown, {}},
               {"by one cell: nothing", kEverywhere, {4, 0, 3, INT_MAX}, INT_MAX, kOk, {}},
               {"25 cells", {3, 3, -3, -3}, {3, 3, -3, -3}, 1, kBlockTooSmall, {}},
               {"one cell by size, none by edges", {1, 1, -1, -1}, {1, 1, -1, -1}, 4, kOk, Bytes(4)}});
}

}  // namespace tovrtest
