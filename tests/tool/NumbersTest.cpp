// Numbers of cells, without a process: their form, their texts, which rectangle covers what, cabinets.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>
#include <stdexcept>
#include <utility>

#include "client/cells/CoveredCells.h"
#include "client/cells/NumberForm.h"
#include "client/statistics/CabinetReport.h"

namespace {

using namespace tovrdb;

NumberForm formOf(const std::string& dtype, const std::string& scale = "1", const std::string& unit = "") {
  return {parseNumberType(dtype), parseScale(scale), unit};
}

TEST(NumberFormTest, ComesBackFromTheVersionTextAndLeavesTheRestAlone) {
  const NumberForm form = formOf("uint16", "1/16384", "gain, of red");
  const std::string joined = joinVersion("v 2 [x]", form, 18);
  EXPECT_EQ(joined, "v 2 [x] [9 x uint16, scale 1/16384, unit gain, of red]");
  const VersionText split = splitVersion(joined, 18);
  EXPECT_EQ(split.text, "v 2 [x]");
  ASSERT_TRUE(split.form.has_value());
  EXPECT_TRUE(*split.form == form);
  EXPECT_THROW(joinVersion(std::string(60, 'v'), form, 18), std::invalid_argument);

  EXPECT_FALSE(splitVersion(joined, 36).form.has_value()) << "another program replaced the cells";
  for (const char* other : {"", "v1", "v1 [beta]", "[2 x]", "[x x uint8]", "[1 x uint8, scale 0]", "[1 x uint8] "}) {
    EXPECT_EQ(splitVersion(other, 1).text, other);
    EXPECT_FALSE(splitVersion(other, 1).form.has_value()) << other;
  }
}

TEST(NumberFormTest, WhatIsGivenGoesBeforeWhatIsKept) {
  const NumberForm kept = formOf("uint16", "1/16384", "gain");
  EXPECT_FALSE(chosenForm({}, std::nullopt).has_value());
  EXPECT_TRUE(*chosenForm({}, kept) == kept);
  EXPECT_TRUE(*chosenForm({parseNumberType("uint16"), {}, {}}, kept) == kept);
  EXPECT_TRUE(*chosenForm({parseNumberType("int16"), {}, {}}, kept) == formOf("int16"));
  EXPECT_TRUE(*chosenForm({{}, parseScale("1"), {}}, kept) == formOf("uint16", "1", "gain"));
  for (const char* bad : {"", "0", "-1", "1/0", "nan", "inf", "1/2/3", "1 ", "1e-320", "x"}) {
    EXPECT_THROW(parseScale(bad), std::invalid_argument) << bad;
  }
  EXPECT_EQ(endsOf(formOf("uint16", "1/10")), (std::vector<double>{0, 6553.5}));
  EXPECT_EQ(endsOf(formOf("int8")), (std::vector<double>{-128, 127}));
}

TEST(NumberTextTest, TellsDifferentNumbersApart) {
  EXPECT_EQ(numberText(16777216), "16777216");
  EXPECT_EQ(numberText(1000000.001), "1000000.001");
  EXPECT_EQ(numberText(1e20), "1e+20");
  EXPECT_EQ(numberText(-0.1), "-0.1");
  EXPECT_EQ(numberText(7745.16180555, 0.03), "7745.16");
  EXPECT_EQ(formOf("float32").text(static_cast<double>(0.1F)), "0.1");
  const NumberForm scaled = formOf("uint16", "1/16384");
  EXPECT_NE(scaled.text(scaled.scale.of(16383)), scaled.text(scaled.scale.of(16384)));
}

// The same by marking every cell.
TEST(CoveredCellsTest, AgreeWithMarkingEveryCell) {
  using Cells = std::set<std::pair<int, int>>;
  CoveredCells covered;
  Cells marked;
  std::minstd_rand random(1);
  const auto below = [&random](unsigned int limit) { return static_cast<int>(random() % limit); };
  for (int i = 0; i < 300; ++i) {
    const int left = below(40), top = below(30);
    const Rect rect{left, top, left + below(9), top + below(6)};
    Cells open, met, visited;
    for (int y = rect.top; y <= rect.bottom; ++y) {
      for (int x = rect.left; x <= rect.right; ++x) (marked.count({x, y}) != 0 ? met : open).insert({x, y});
    }
    EXPECT_EQ(covered.meets(rect), !met.empty());
    EXPECT_EQ(covered.holds(rect), open.empty());
    covered.add(rect, [&visited](const CellRun& run) {
      for (int x = run.left; x <= run.right; ++x) EXPECT_TRUE(visited.insert({x, run.y}).second);
    });
    EXPECT_EQ(visited, open);
    marked.insert(open.begin(), open.end());
  }
}

TEST(CabinetReportTest, FindsSeamsEndsAndTheWorstCells) {
  // Three cabinets of 4 x 3, the last cut to 2 columns; each 10 brighter than the one before.
  NumberGrid numbers{{3, 5, 12, 7}, {}};
  for (int y = 5; y <= 7; ++y) {
    for (int x = 3; x <= 12; ++x) numbers.values.push_back((x - 3) / 4 * 10 + (x + y) % 2);
  }
  numbers.values[numbers.index(4, 6)] = 255;
  numbers.values[numbers.index(12, 7)] = std::nan("");
  const auto cabinets = cabinetsIn(numbers.rect, {-1, 5}, {4, 4});
  ASSERT_EQ(cabinets.size(), 3U);
  EXPECT_EQ(toText(cabinets[2]), "11,5,12,7");
  const CabinetReport report = reportCabinets(numbers, cabinets, {{0, 255}, 6, 5});
  EXPECT_EQ(report.parts[0].atEnds, (std::vector<std::size_t>{5, 1}));
  EXPECT_EQ(report.parts[2].summary.notFinite, 1U);
  ASSERT_EQ(report.seams.size(), 2U);
  EXPECT_EQ(toText(report.seams[0].line), "7,5,7,7");
  EXPECT_NEAR(report.seams[0].difference, 10 - 1.0 / 3, 1e-9);
  ASSERT_EQ(report.worst.size(), 1U);
  EXPECT_EQ(report.worst[0].cell.x, 4);
  EXPECT_EQ(report.worst[0].cell.y, 6);
}

}  // namespace
