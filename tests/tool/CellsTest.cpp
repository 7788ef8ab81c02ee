// The pure parts of the tool that know cells: rectangles, .npy arrays, blocks, CSV, differences, statistics.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "client/base/Error.h"
#include "client/cells/CellNumbers.h"
#include "client/cells/CoveredCells.h"
#include "client/statistics/BlockDifference.h"
#include "client/statistics/Statistics.h"
#include "tests/tool/NpyText.h"

namespace {

using namespace tovrdb;
using namespace tovrtest;

NpyArray parsed(const std::string& file) { return parseNpy(bytesOf(file), "a.npy"); }

NumberForm formOf(const char* dtype) { return {parseNumberType(dtype), {}, {}}; }

// Complains with these words.
template <class Action>
testing::AssertionResult complains(const std::string& words, Action action) {
  try {
    action();
    return testing::AssertionFailure() << "no word where this was to come: " << words;
  } catch (const std::exception& error) {
    const bool found = std::string(error.what()).find(words) != std::string::npos;
    return testing::AssertionResult(found) << error.what() << ", where this was to come: " << words;
  }
}

TEST(RectTest, IsReadInTheOrderLeftTopRightBottom) {
  for (const char* text : {"1,2,3,4", "1,2..3,4"}) EXPECT_EQ(toText(parseRect(text)), "1,2,3,4");
  EXPECT_EQ(toText(parseRect("0,0,2147483647,0")), "0,0,2147483647,0");
  for (const char* text : {"", "1,2,3", "1..2,3,4", "1,2..3", "1,2...3,4", "1,2,3,4,", " 1,2,3,4", "-1,2,3,4",
                           "1,2,3,2147483648", "a,b,c,d"}) {
    EXPECT_TRUE(complains("is not of the form L,T,R,B", [&] { parseRect(text); })) << text;
  }
  EXPECT_TRUE(complains("is inverted", [] { parseRect("3,0,2,0"); }));
  EXPECT_TRUE(complains("whole numbers from 1", [] { parseSize("0x5"); }));
}

TEST(RectTest, WhatLiesOutsideIsCounted) {
  const Rect area{0, 10, 959, 539};
  EXPECT_EQ(outsideText({0, 10, 960, 539}, area, "area 1"), "one column beyond area 1, which ends at 959,539");
  EXPECT_EQ(outsideText({0, 8, 961, 540}, area, "it"),
            "2 rows before it, which begins at 0,10, and 2 columns and one row beyond it, which ends at 959,539");
  EXPECT_EQ(outsideText(area, area, "it"), "");
}

TEST(RectTest, BytesFillItOnlyWhenTheyAreExactlyItsCells) {
  EXPECT_TRUE(fills(24, {0, 0, 3, 2}, 2));
  EXPECT_FALSE(fills(23, {0, 0, 3, 2}, 2));
  EXPECT_FALSE(fills(0, {0, 0, 3, 2}, 0));
  EXPECT_FALSE(fills(0, {1, 0, 0, 0}, 1));
  EXPECT_FALSE(fills(0, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, INT32_MAX));  // the product overflows 64 bits
}

TEST(RectTest, AnArraysRectangleEndsWhereItsCellsEnd) {
  EXPECT_EQ(toText(rectAt({5, 6}, 3, 2)), "5,6,7,7");
  EXPECT_THROW(rectAt({INT32_MAX, 0}, 2, 1), std::invalid_argument);
  EXPECT_THROW(rectAt({0, 0}, 0, 1), std::invalid_argument);
  EXPECT_EQ(common({0, 0, 4, 4}, {5, 0, 9, 4}), std::nullopt);
  EXPECT_EQ(common({0, 0, 5, 4}, {5, 1, 9, 9}), (Rect{5, 1, 5, 4}));
  EXPECT_EQ(united({0, 3, 1, 4}, {5, 1, 9, 2}), (Rect{0, 1, 9, 4}));
}

// Against every pair, in dense and sparse heaps of rectangles, some of which hold no cells.
TEST(OverlapsTest, Pairs_AreAllCounted) {
  for (std::int32_t seed = 1, room = 4; room < 400; room *= 3, ++seed) {
    std::vector<Rect> rects;
    for (std::int32_t i = 0; i < 60; ++i) {
      const std::int32_t x = i * 7919 * seed % room, y = i * 104729 % room;
      rects.push_back({x, y, x + i * 31 % 9 - 1, y + i * 17 % 9});
    }
    rects.push_back({0, 0, INT_MAX, INT_MAX});
    std::uint64_t pairs = 0;
    for (std::size_t i = 0; i < rects.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) pairs += isSound(rects[i]) && isSound(rects[j]) && common(rects[i], rects[j]);
    }
    const Overlaps overlaps = overlapsAmong(rects, 10);
    EXPECT_EQ(overlaps.pairs, pairs) << room;
    EXPECT_EQ(overlaps.named.size(), 10U);
    for (const auto& [one, other] : overlaps.named) {
      EXPECT_LT(one, other);
      EXPECT_TRUE(common(rects[one], rects[other]).has_value());
    }
  }
}

TEST(NpyTest, HeadersAreTakenInEverySpellingOfEveryVersion) {
  const std::string headers[] = {
      "{'descr': '<u2', 'fortran_order': False, 'shape': (2, 3), }\n",
      "{'shape': (2, 3), 'descr': '<u2', 'fortran_order': False, }      \n",
      "{'descr':'<u2','fortran_order':False,'shape':(2,3)}\n",
      "{ \"descr\" : \"<u2\" , \"fortran_order\" : False , \"shape\" : ( 2 , 3 , ) , }\n",
      "{'descr': '<u2', 'fortran_order': False, 'shape': (2L, 3L)}\n",  // Python 2
  };
  for (const std::string& header : headers) {
    for (const char version : {'\1', '\2', '\3'}) {
      const NpyArray array = parsed(npyFile(version, header, payload(12)));
      EXPECT_EQ(array.shape, (std::vector<std::size_t>{2, 3})) << header;
      EXPECT_EQ(array.dtype, NumberType::kUint16) << header;
      EXPECT_EQ(array.bytes, keptPayload(12)) << header;
    }
  }
}

TEST(NpyTest, WhatIsWrittenIsWhatNumPyWrites) {
  EXPECT_EQ(npyHeader(parseNumberType("uint16"), {4, 8}), npy("<u2", "4, 8", ""));
  EXPECT_EQ(npyHeader(parseNumberType("float64"), {1080, 1920, 9}), npy("<f8", "1080, 1920, 9", ""));
  EXPECT_EQ(npyHeader(parseNumberType("<u1"), {7}), npy("|u1", "7,", ""));
}

TEST(NpyTest, FilesThatAreNotSuchAnArrayAreRefused) {
  const std::string good = npy("<u2", "4, 8", payload(64));
  const std::string begun = "{'descr': '<u2', 'fortran_order': False, 'shape': (1,";
  const std::pair<std::string, const char*> cases[] = {
      {"", "is not a .npy file"},
      {good.substr(0, 60), "truncated inside its header"},
      {npyFile('\4', "", ""), "version 4 is unknown"},
      {std::string("\x93NUMPY\x02\x00\xff\xff\xff\xff", 12), "is too long"},
      {good.substr(0, good.size() - 1), "shape (4, 8) of uint16 needs 64 bytes of numbers, and the file has 63"},
      {good + "x", "it is too long"},
      {npy("<u2", "128, 128, 128, 128, 128, 128, 128, 128, 128", ""), "it is truncated"},  // 2 to the 64th bytes
      {npy("<u2", "18446744073709551616", ""), "whole numbers"},
      {npy("<u2", "4 8", ""), "',' or ')' is expected"},
      {npy(">u2", "4, 8", payload(64)), "big-endian (>u2)"},
      {npy("<u2", "4, 8", payload(64), "True"), "Fortran order"},
      {npy("<c8", "4, 8", payload(256)), "<c8 is not one of uint8, "},
      {npyFile('\1', "{}\n", ""), "exactly the keys 'descr', "},
      {npyFile('\1', begun + ")}\n more", ""), "exactly the keys 'descr', "},
      {npyFile('\1', "{'more': 1}\n", ""), "'more' is unknown"},
      {npyFile('\1', "{'descr': [('a', '<u2')]", ""),
       "a quoted text is expected at byte 11, before \"[('a', '<u2')]\""},
      {npyFile('\1', begun + ")}", ""), "a newline at the end is expected"},
      {npyFile('\1', begun, ""), "whole numbers"},
  };
  for (const auto& [file, words] : cases) {
    EXPECT_TRUE(complains(words, [&given = file] { parsed(given); }));
  }
}

TEST(CellBlockTest, ArraysAreBlocksOfTheirOwnRectangle) {
  const auto placed = [](const char* shape, std::size_t bytes) {
    return blockFromArray(parsed(npy("<u2", shape, payload(bytes))), Rect{0, 0, 7, 3}, {});
  };
  EXPECT_EQ(placed("4, 8", 64).cellBytes, 2);
  EXPECT_TRUE(complains("its shape would begin with (4, 8)", [&] { placed("8, 4", 64); }));
  EXPECT_TRUE(complains("(rows, columns, values)", [&] { placed("32,", 64); }));
  EXPECT_TRUE(complains("none of them 0", [&] { placed("4, 0", 0); }));
  const CellBlock block = blockFromArray(parsed(npy("<u2", "4, 8, 3, 3", payload(576))), {}, CellPair{10, 20});
  EXPECT_EQ(toText(block.rect), "10,20,17,23");
  EXPECT_EQ(block.cellBytes, 18);
  EXPECT_EQ(blockShape(block.rect, 18, parseNumberType("uint16")), (std::vector<std::size_t>{4, 8, 9}));
  EXPECT_THROW(blockShape(block.rect, 18, parseNumberType("uint32")), Error);
  EXPECT_THROW(blockFromBytes(keptPayload(30), {0, 0, 2, 1}, 4), Error);
}

TEST(CellCsvTest, NumbersKeepEveryDigit) {
  const float numbers[] = {1.5F, -2, 0.1F, 16777216};
  const std::string cells(reinterpret_cast<const char*>(numbers), sizeof numbers);
  const CellBlock block = blockFromBytes(bytesOf(cells), {3, 2, 4, 2}, 8);
  std::string text;
  writeCsv(block, formOf("float32"), [&text](const std::string& line) { text += line; });
  EXPECT_EQ(text, "column,row,value0,value1\n3,2,1.5,-2\n4,2,0.100000001,16777216\n");
  EXPECT_THROW(writeCsv(block, formOf("int64"), [](const std::string&) {}), Error);
}

TEST(CellNumbersTest, EveryTypeIsRead) {
  const auto first = [](const char* dtype, const std::string& bytes) {
    double number = 0;
    readNumbers(parseNumberType(dtype), reinterpret_cast<const unsigned char*>(bytes.data()), 1, 1, &number);
    return number;
  };
  EXPECT_EQ(first("int8", "\xFF"), -1);
  EXPECT_EQ(first("uint16", "\xFE\xFF"), 65534);
  EXPECT_EQ(first("int32", "\xFE\xFF\xFF\xFF"), -2);
  EXPECT_EQ(first("float16", std::string("\x00\x3C", 2)), 1);
  EXPECT_EQ(first("float16", std::string("\x01\x80", 2)), -std::ldexp(1, -24));
  EXPECT_TRUE(std::isnan(first("float16", std::string("\x00\x7E", 2))));
}

TEST(CellNumbersTest, Half_IsRoundedOnce) {
  const std::pair<double, unsigned int> cases[] = {
      {1 + std::ldexp(1, -11), 0x3C00},                       // halfway: to the even one
      {1 + std::ldexp(1, -11) + std::ldexp(1, -40), 0x3C01},  // the nearest float is halfway
      {-1 - std::ldexp(3, -11) + std::ldexp(1, -40), 0xBC01},
      {std::ldexp(1, -25) + std::ldexp(1, -60), 1},
      {65519.999999999, 0x7BFF},
      {HUGE_VAL, 0x7C00},
      {std::nan(""), 0x7E00}};
  for (const auto& [number, bits] : cases) {
    const std::vector<unsigned char> cell = cellOf(NumberType::kFloat16, 1, number);
    EXPECT_EQ(cell.at(0) | cell.at(1) << 8U, bits) << number;
  }
  EXPECT_TRUE(complains("is not a number of type float16", [] { cellOf(NumberType::kFloat16, 1, 65520); }));
}

TEST(BlockDifferenceTest, NumbersWithinEitherToleranceAreEqual) {
  const double nan = std::nan("");
  const double inf = HUGE_VAL;
  EXPECT_FALSE(differ(1, 1.5, {0.5, 0}));
  EXPECT_TRUE(differ(1, 1.5, {0.49, 0}));
  EXPECT_FALSE(differ(-100, -101, {0, 0.01}));
  EXPECT_TRUE(differ(-100, -102, {0, 0.01}));
  EXPECT_FALSE(differ(nan, nan, {}));
  EXPECT_TRUE(differ(nan, 1, {1e9, 1}));
  EXPECT_TRUE(differ(inf, 1, {1e9, 1}));
  EXPECT_FALSE(differ(inf, inf, {}));
  EXPECT_FALSE(differ(0.0, -0.0, {}));
}

TEST(BlockDifferenceTest, TheLargestDifferenceIsNamedByItsCellAndComponent) {
  std::string cells(16, '\0');
  const Rect rect{10, 20, 13, 21};
  const CellBlock before = blockFromBytes(bytesOf(cells), rect, 2);
  cells[3] = 2;   // cell 1, component 1
  cells[12] = 9;  // cell 6, component 0
  const CellBlock after = blockFromBytes(bytesOf(cells), rect, 2);
  const BlockDifference found = compareBlocks(before, after, formOf("uint8"), std::nullopt);
  EXPECT_EQ(found.cells, 8);
  EXPECT_EQ(found.differing, 2);
  EXPECT_EQ(found.at.x, 12);
  EXPECT_EQ(found.at.y, 21);
  EXPECT_EQ(found.component, 0U);
  EXPECT_EQ(found.after, 9);
  EXPECT_EQ(compareBlocks(before, after, formOf("uint8"), Tolerance{2, 0}).differing, 1);
  EXPECT_EQ(compareBlocks(before, after, std::nullopt, std::nullopt).at.x, 11);  // to the bit: the first
}

TEST(StatisticsTest, SummariesAreOfTheFiniteNumbers) {
  const Summary summary = summarize({3, 0, 10, std::nan(""), 7, 5, 1, HUGE_VAL, 9, 2, 4, 8, 6});
  EXPECT_EQ(summary.count, 11U);
  EXPECT_EQ(summary.notFinite, 2U);
  EXPECT_EQ(summary.minimum, 0);
  EXPECT_EQ(summary.maximum, 10);
  EXPECT_NEAR(summary.mean, 5, 1e-12);
  EXPECT_NEAR(summary.deviation, std::sqrt(10.0), 1e-12);
  ASSERT_EQ(summary.percentiles.size(), kPercents.size());
  for (std::size_t i = 0; i < kPercents.size(); ++i) EXPECT_NEAR(summary.percentiles[i], kPercents[i] / 10, 1e-12);
  EXPECT_EQ(summarize({7}).percentiles.front(), 7);
  EXPECT_EQ(summarize({HUGE_VAL}).count, 0U);
}

TEST(StatisticsTest, EveryFiniteNumberIsInOnePlaceOfTheHistogram) {
  const Histogram found = histogram({-6, -5, 0, 9.9, 10, 15, 15.1, std::nan("")}, -5, 15, 4);
  EXPECT_EQ(found.below, 1U);
  EXPECT_EQ(found.bins[0].count, 1U);
  EXPECT_EQ(found.bins[1].count, 1U);
  EXPECT_EQ(found.bins[2].count, 1U);
  EXPECT_EQ(found.bins[3].count, 2U);  // 15, its upper end, too
  EXPECT_EQ(found.above, 1U);
}

TEST(StatisticsTest, WildCellsStandOutAndDoNotHideEachOther) {
  std::vector<double> values(1000, 100.0);
  for (std::size_t i = 0; i < values.size(); i += 2) values[i] += static_cast<double>(i % 7);
  values[10] = 1e6;
  values[20] = -1e7;
  const Outliers found = findOutliers(values, 6, 1);
  EXPECT_EQ(found.count, 2U);
  EXPECT_EQ(found.farthest.at(0).index, 20U);
  std::vector<double> equal(1000, 5.0);
  equal[3] = 9;  // more than half are equal: their median deviation is 0
  EXPECT_EQ(findOutliers(equal, 6, 10).count, 1U);
}

TEST(StatisticsTest, StayFiniteAtTheEndsOfTheNumbers) {
  const std::vector<double> values = {DBL_MAX, -DBL_MAX, DBL_MAX, 0, HUGE_VAL, std::nan("")};
  const Summary summary = summarize(values);
  EXPECT_EQ(summary.count, 4U);
  EXPECT_NEAR(summary.mean / DBL_MAX, 0.25, 1e-9);
  EXPECT_NEAR(summary.deviation / DBL_MAX, std::sqrt(11.0) / 4, 1e-9);
  for (const Outlier& outlier : findOutliers(values, 0, 9).farthest) EXPECT_TRUE(std::isfinite(outlier.distance));
}

}  // namespace
