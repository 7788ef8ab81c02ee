// The region crop at the edges of its numbers. Byte by byte it is fuzz/CropFuzz's to test.
#include <climits>

#include "manager/RegionCrop.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr int kThrown = -1;
constexpr Rect kEverywhere{INT_MIN, INT_MIN, INT_MAX, INT_MAX};
constexpr Rect kPositive{0, 0, INT_MAX, INT_MAX};
constexpr Rect kNegative{INT_MIN, INT_MIN, -1, -1};
constexpr Rect kFourByFour{0, 0, 3, 3};

// Crops the block of the bytes 1, 2, 3, 4.
class RegionCropTest : public testing::Test {
 protected:
  int crop(const Rect& stored, const Rect& requested, int cellBytes) {
    Bytes block = {1, 2, 3, 4};  // exactly: a read beyond it is the address sanitizer's to report
    cells.clear();
    std::unique_ptr<unsigned char[]> out;
    int code = kThrown;
    try {
      code = cropRegion({cellBytes, block.data(), 4}, stored, requested, out);
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(out != nullptr, code == kOk);
    if (code == kOk) cells.assign(out.get(), out.get() + regionBytes(requested, cellBytes));
    return code;
  }

  Bytes cells;
};

TEST_F(RegionCropTest, WhatReachesOutOfTheStoredRectangleIsRefused) {
  EXPECT_EQ(crop(kFourByFour, {-1, 0, 3, 3}, 1), kRectangleRefused);
  EXPECT_EQ(crop(kFourByFour, {0, -1, 3, 3}, 1), kRectangleRefused);
  EXPECT_EQ(crop(kFourByFour, {0, 0, 4, 3}, 1), kRectangleRefused);
  EXPECT_EQ(crop(kFourByFour, {0, 0, 3, 4}, 1), kRectangleRefused);
}

TEST_F(RegionCropTest, CellsAreCopiedFromWhereverTheStoredRectangleStarts) {
  EXPECT_EQ(crop(kPositive, {0, 0, 3, 0}, 1), kOk);
  EXPECT_EQ(cells, (Bytes{1, 2, 3, 4}));
  EXPECT_EQ(crop(kNegative, {INT_MIN, INT_MIN, INT_MIN + 1, INT_MIN}, 2), kOk);
  EXPECT_EQ(cells, (Bytes{1, 2, 3, 4}));
}

TEST_F(RegionCropTest, MoreThanTheBlockHoldsIsRefusedHoweverLargeItIs) {
  EXPECT_EQ(crop(kPositive, {0, 0, 4, 0}, 1), kBlockTooSmall) << "one byte too many";
  EXPECT_EQ(crop(kEverywhere, kEverywhere, 1), kBlockTooSmall) << "2^64 bytes";
  EXPECT_EQ(crop(kEverywhere, {0, 0, 65535, 65535}, 1), kBlockTooSmall) << "2^32 bytes: 0 in 32 bits";
  EXPECT_EQ(crop(kEverywhere, {0, 0, 0, 0}, INT_MAX), kBlockTooSmall);
}

TEST_F(RegionCropTest, CellsBehindTheEndOfAShortBlockAreRefused) {
  EXPECT_EQ(crop(kPositive, {INT_MAX, INT_MAX, INT_MAX, INT_MAX}, 1), kBlockTooSmall) << "the last cell";
  EXPECT_EQ(crop(kNegative, {-1, -1, -1, -1}, 1), kBlockTooSmall) << "the last cell";
  EXPECT_EQ(crop(kPositive, {0, 1, 0, 1}, 1), kBlockTooSmall) << "a cell of the second row";
  EXPECT_EQ(crop(kPositive, {0, 0, 0, 1}, 2), kBlockTooSmall) << "two cells that fit, the second behind the end";
}

TEST_F(RegionCropTest, AStoredRectangleFromNegativeToPositiveHasNoCells) {
  EXPECT_EQ(crop(kEverywhere, {0, 0, 1, 0}, 2), kOk);
  EXPECT_EQ(cells, Bytes(4));
}

TEST_F(RegionCropTest, InvertedRectanglesHaveTheSizeOfTheirProduct) {
  EXPECT_EQ(crop(kEverywhere, {INT_MAX, INT_MAX, INT_MIN, INT_MIN}, 1), kBlockTooSmall) << "twice: large, positive";
  EXPECT_EQ(crop(kEverywhere, {INT_MAX, 0, INT_MIN, 0}, INT_MAX), kThrown) << "once: negative";
  EXPECT_EQ(crop(kPositive, {0, 0, 3, 0}, -1), kThrown) << "a negative cell";
  EXPECT_EQ(crop(kEverywhere, {4, 0, 3, INT_MAX}, INT_MAX), kOk) << "by one cell: nothing";
  EXPECT_EQ(cells, Bytes{});
  EXPECT_EQ(crop({3, 3, -3, -3}, {3, 3, -3, -3}, 1), kBlockTooSmall) << "25 cells";
  EXPECT_EQ(crop({1, 1, -1, -1}, {1, 1, -1, -1}, 4), kOk) << "one cell by its size, none by its edges";
  EXPECT_EQ(cells, Bytes(4));
}

TEST_F(RegionCropTest, APlanTellsWhereTheCellsLie) {
  CropPlan plan;
  ASSERT_EQ(planCrop({10, 20, 19, 29}, {13, 22, 15, 24}, 2, 200, plan), kOk);
  EXPECT_EQ(plan.bytes, 18);
  EXPECT_EQ(plan.rows, 3);
  EXPECT_EQ(plan.rowBytes, 6);
  EXPECT_EQ(plan.first, 46);
  EXPECT_EQ(plan.stride, 20);
  ASSERT_EQ(planCrop({10, 20, 19, 29}, {13, 22, 12, 24}, 2, 200, plan), kOk);
  EXPECT_EQ(plan.bytes, 0);
  EXPECT_EQ(plan.rows, 0);
  EXPECT_EQ(plan.first, 0);
}

}  // namespace tovrtest
