// Reports: levels, blocks and markup as functions, and the program's page. scripts/report-check.sh opens pages in a
// browser.
#include <cmath>
#include <limits>
#include <vector>

#include "client/base/Json.h"
#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"
#include "tool/report/Levels.h"
#include "tool/report/ReportPage.h"

namespace {

using namespace tovrdb;
using namespace tovrdb::tool;
using namespace tovrtest;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// As docs/report.md tells readers to do it.
std::vector<unsigned> unpacked(const std::string& text) {
  const std::string digits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!#$%&()*+-;,=>?@^_`{|}~";
  std::vector<unsigned> bytes;
  for (std::size_t from = 0; from < text.size(); from += 5) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < 5; ++i) word = word * 85 + digits.find(text[from + i]);
    for (const int shift : {24, 16, 8, 0}) bytes.push_back(static_cast<unsigned>(word >> shift & 0xFF));
  }
  return bytes;
}

std::vector<double> numbersOf(const Levels& levels, std::size_t count) {
  const auto bytes = unpacked(levels.levels);
  const auto absent = unpacked(levels.absent);
  std::vector<double> numbers;
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned level = levels.bits == 0 ? 0 : levels.bits == 8 ? bytes[i] : bytes[2 * i] + 256 * bytes[2 * i + 1];
    const bool none = !absent.empty() && (absent[i / 8] >> i % 8 & 1) != 0;
    numbers.push_back(none ? kNaN : levels.offset + levels.step * level);
  }
  return numbers;
}

TEST(LevelsTest, WholeNumbersThatFitAreKeptExactlyAndOthersToHalfAStep) {
  struct Case {
    std::vector<double> numbers;
    int mostBits;
    int bits;
    bool exact;
  };
  const double large = 1e300;
  for (const Case& each : std::vector<Case>{{{5, 5, 5}, 16, 0, true},
                                            {{-3, 252, 0, kNaN, 7}, 8, 8, true},
                                            {{0, 65535, 255, 256}, 16, 16, true},
                                            {{0, 65536, 3, 4}, 16, 16, false},
                                            {{0, 1000, 3, 499}, 8, 8, false},
                                            {{0.1, 0.2, INFINITY, 0.15, 0.11}, 16, 16, false},
                                            {{-large, large, 0}, 16, 16, false},
                                            {{0, 5e-324}, 8, 8, false},
                                            {{kNaN, kNaN}, 16, 0, true},
                                            {{}, 8, 0, true}}) {
    const Levels levels = levelsOf(each.numbers, each.mostBits);
    const double first = each.numbers.empty() ? 0 : each.numbers[0];
    EXPECT_EQ(levels.bits, each.bits) << first;
    EXPECT_EQ(levels.exact, each.exact) << first;
    const auto back = numbersOf(levels, each.numbers.size());
    for (std::size_t i = 0; i < back.size(); ++i) {
      if (!std::isfinite(each.numbers[i])) {
        EXPECT_TRUE(std::isnan(back[i])) << i;
      } else if (each.exact) {
        EXPECT_EQ(back[i], each.numbers[i]);
      } else {
        EXPECT_LE(std::abs(back[i] - each.numbers[i]), levels.step * 0.5001) << each.numbers[i];
      }
    }
  }
}

TEST(BlockReductionTest, BlocksTellMinimumMeanAndMaximumOfWhatTheyHave) {
  const ReducedNumbers reduced = reduceBlocks({1, 2, 9, 3, 4, kNaN}, 3, 2, 2);
  EXPECT_EQ(reduced.columns, 2);
  EXPECT_EQ(reduced.rows, 1);
  EXPECT_EQ(reduced.least, (std::vector<double>{1, 9}));
  EXPECT_EQ(reduced.mean, (std::vector<double>{2.5, 9}));
  EXPECT_EQ(reduced.most, (std::vector<double>{4, 9}));
  EXPECT_TRUE(std::isnan(reduceBlocks({kNaN}, 1, 1, 5).mean[0]));
}

struct ReportTest : ToolTest {
  std::string dataOf(const std::string& page) const {
    const std::string text = read(page), open = "id=\"data\">";
    const std::size_t from = text.find(open) + open.size();
    return text.substr(from, text.find("</script>", from) - from);
  }
};

TEST_F(ReportTest, NamesWithMarkupStayTextAndThePageIsItsOwnersOnly) {
  EXPECT_EQ(htmlText("a<b>&\"'\x01\xff"), "a&lt;b&gt;&amp;&quot;&#39;\\u0001\xEF\xBF\xBD");
  succeed("create wall.db --type 0 --name '</script><script>alert(1)</script>'");
  succeed("screen add wall.db --name '<script>alert(2)</script>' --rect 0,0,1,0");
  write("cells.npy", npy("<u2", "1, 2", std::string("\1\0\4\0", 4)));
  succeed("coef put wall.db --type 1 --at 0,0 cells.npy");
  succeed("report wall.db -o wall.html");
  const std::string page = read("wall.html");
  EXPECT_EQ(page.find("<script>alert"), std::string::npos);
  EXPECT_NE(page.find("&lt;script&gt;alert(2)&lt;/script&gt;"), std::string::npos);
  EXPECT_NE(page.find("default-src 'none'"), std::string::npos);
  EXPECT_EQ(page.find("the test key"), std::string::npos);
  EXPECT_EQ(fs::status(path("wall.html")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  const Json data = Json::parse(dataOf("wall.html"));
  EXPECT_EQ(data["sets"][0]["screen"], "<script>alert(2)</script>");
  EXPECT_EQ(data["sets"][0]["values"]["components"][0]["statistics"]["mean"], 2.5);
  expectFailure(3, "wall.html exists", "report wall.db -o wall.html");
  expectFailure(2, "would replace", "report wall.db -o wall.db --force");
}

TEST_F(ReportTest, WhatCannotBeShownIsNamed) {
  succeed("create empty.db --type 0");
  sql(path("empty.db"), "create table another(x)");
  expectTold("checks of the file warn", "report empty.db -o empty.html");
  EXPECT_TRUE(contains(read("empty.html"), "⚠ The file is sound"));
  EXPECT_EQ(Json::parse(dataOf("empty.html"))["sets"].size(), 0U);
  makeWall();
  write("cells.npy", npy("<f4", "1, 2", std::string("\0\0\xc0\x7f\0\0\xc0\x7f", 8)));  // no numbers
  succeed("coef put wall.db --type 1 --at 0,0 cells.npy");
  write("cells.raw", "123");
  succeed("coef put wall.db --type 1 --raw cells.raw --rect 4,0,4,0 --cell-bytes 3");  // of no known type
  succeed("coef put wall.db --type 1 --at 2,0 cells.npy");
  sql(path("wall.db"), "update Coef set data = zeroblob(16) where id = 3");
  expectTold("2 of 3 blocks are not shown", "report wall.db -o wall.html");
  const std::string page = read("wall.html");
  EXPECT_TRUE(contains(page, "nothing tells the type of its numbers"));
  EXPECT_TRUE(contains(page, "<a href=\"#faults\" aria-label=\"area 2, "));
  const Json set = Json::parse(dataOf("wall.html"))["sets"][0];
  EXPECT_EQ(set["rect"], Json({0, 0, 3, 0}));
  EXPECT_EQ(set["values"]["components"][0]["statistics"]["not_finite"], 2);
  sql(path("wall.db"), "update Screen_Info set right = 'abc'");
  expectTold("checks of the file failed", "report wall.db --force -o wall.html");
  EXPECT_TRUE(contains(read("wall.html"), "screen left: right is &#39;abc&#39;"));
}

TEST_F(ReportTest, AgainstAnOlderFileTheChangedCellsAreCounted) {
  makeWall();
  write("cells.npy", npy("<u2", "2, 2", std::string(8, '\1')));
  succeed("coef put wall.db --type 1 --at 0,0 cells.npy");
  fs::copy(path("wall.db"), path("old.db"));
  write("cell.npy", npy("<u2", "1, 1", std::string("\3\1", 2)));
  succeed("coef put wall.db --type 1 --patch --at 1,1 cell.npy");
  write("cell.npy", npy("<u2", "1, 1", std::string("\5\1", 2)));
  succeed("coef put wall.db --type 1 --patch --at 0,0 cell.npy");
  succeed("report wall.db --against old.db --cabinet 1x1 -o wall.html");
  const Json set = Json::parse(dataOf("wall.html"))["sets"][0];
  const Json& difference = set["difference"]["components"][0];
  EXPECT_EQ(set["difference"]["rect"], Json({0, 0, 1, 1}));
  EXPECT_EQ(difference["changed"]["count"], 2);
  EXPECT_EQ(difference["statistics"]["count"], 2);  // not of the two cells between them
  EXPECT_EQ(difference["statistics"]["mean"], 3);
  EXPECT_EQ(difference["statistics"]["not_finite"], 0);
  EXPECT_EQ(difference["tables"][0]["all"], 2);
  EXPECT_EQ(set["values"]["components"][0]["tables"][0]["rows"].size(), 4U);
  expectFailure(2, "would replace", "report wall.db --against old.db --force -o old.db");
}

}  // namespace
