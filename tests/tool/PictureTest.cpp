// Numbers and pictures of blocks: the pure parts, and the program's heatmap, statistics and differences.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <vector>

#include "tests/tool/ToolFixture.h"
#include "tool/cells/BlockDifference.h"
#include "tool/cells/Statistics.h"
#include "tool/pictures/AxisTicks.h"
#include "tool/pictures/ColourMap.h"

namespace {

using namespace tovrtool;
using namespace tovrtest;

TEST(StatisticsTest, AgreeWithTheDefinitionsForEverySize) {
  std::vector<double> values = {std::nan(""), HUGE_VAL};
  for (int n = 1; n <= 60; ++n) {
    values.push_back((n * 7919) % 61 - 20);
    std::vector<double> sorted(values.begin() + 2, values.end());
    std::sort(sorted.begin(), sorted.end());
    const Summary summary = summarize(values);
    ASSERT_TRUE(summary.count == sorted.size() && summary.others == 2);
    const double sum = std::accumulate(sorted.begin(), sorted.end(), 0.0);
    const double squares = std::inner_product(sorted.begin(), sorted.end(), sorted.begin(), 0.0);
    EXPECT_NEAR(summary.mean, sum / n, 1e-9);
    EXPECT_NEAR(summary.deviation, std::sqrt(std::max(0.0, squares / n - sum / n * sum / n)), 1e-6);
    for (std::size_t i = 0; i < kPercents.size(); ++i) {
      const double rank = kPercents[i] / 100 * (n - 1);
      const double low = sorted[static_cast<std::size_t>(rank)];
      const double high = sorted[static_cast<std::size_t>(std::ceil(rank))];
      EXPECT_NEAR(summary.percentiles[i], low + (high - low) * (rank - std::floor(rank)), 1e-9) << n << " " << i;
    }
    const Histogram bins = histogram(values, -5, 15, 4);
    const auto low = std::count_if(sorted.begin(), sorted.end(), [](double value) { return value < 10; });
    EXPECT_EQ(bins.bins[3].count + bins.above, sorted.size() - static_cast<std::size_t>(low));  // 15 is in the last bin
  }
}

TEST(StatisticsTest, WildCellsStandOutAndDoNotHideEachOther) {
  std::vector<double> values(1000, 100.0);
  for (std::size_t i = 0; i < values.size(); i += 2) values[i] += static_cast<double>(i % 7);
  values[10] = 1e6;
  values[20] = -1e7;
  const Outliers found = standOut(values, 6, 1);
  EXPECT_EQ(found.count, 2U);
  EXPECT_EQ(found.strongest.at(0).index, 20U);
  std::vector<double> equal(1000, 5.0);
  equal[3] = 9;  // more than half are equal: their median deviation is 0
  EXPECT_EQ(standOut(equal, 6, 10).count, 1U);
}

TEST(ColourMapTest, LightnessRisesOrIsGreatestInTheMiddle) {
  const ColourMap values(Palette::kSequential), differences(Palette::kDiverging);
  EXPECT_TRUE(values.at(-5) == (Colour{0x44, 0x01, 0x54}) && values.at(7) == (Colour{0xFD, 0xE7, 0x25}));
  EXPECT_TRUE(differences.at(0) == (Colour{59, 76, 192}) && differences.at(0.5) == (Colour{221, 221, 221}));
  const auto rises = [](const ColourMap& map, double from, double to) {  // but for the rounding to 8 bits
    return lightness(map.at(to)) > lightness(map.at(from)) - 0.35;
  };
  for (int i = 0; i < 255; ++i) EXPECT_TRUE(rises(values, i / 255.0, (i + 1) / 255.0)) << i;
  for (double at = 0; at < 0.5; at += 1 / 256.0) {
    EXPECT_TRUE(rises(differences, at, at + 1 / 256.0) && rises(differences, 1 - at, 1 - at - 1 / 256.0)) << at;
  }
}

TEST(AxisTicksTest, AreFewRoundAndInside) {
  for (const double low : {-3.0, 0.0, 0.1, 5581.0}) {
    for (const double length : {1e-3, 0.7, 19.0, 8000.0, 3e9}) {
      const Ticks ticks = roundTicks(low, low + length, 5);
      EXPECT_TRUE(ticks.values.size() >= 2 && ticks.values.size() <= 5) << low << " " << length;
      for (const double value : ticks.values) EXPECT_NEAR(value, low + length / 2, length / 2 + ticks.step * 1e-6);
    }
  }
  EXPECT_EQ(tickText(0.30000000000000004, 0.1) + " " + tickText(-0.0, 5) + " " + tickText(2e9, 5e8), "0.3 0 2e+09");
}

long countPixels(const std::string& path, const Colour& colour) {
  const std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(
      cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy);
  EXPECT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS) << path;
  const int size = cairo_image_surface_get_width(surface.get()) * cairo_image_surface_get_height(surface.get());
  const auto* const pixels = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
  const auto word = static_cast<std::uint32_t>(colour.red << 16 | colour.green << 8 | colour.blue);
  return std::count_if(pixels, pixels + size, [&](std::uint32_t pixel) { return (pixel & 0xFFFFFF) == word; });
}

constexpr long kCell = 48L * 48;  // pixels

struct PictureTest : ToolTest {
  PictureTest() {  // what the font library keeps for the whole process is not the program's to free
    write("leaks", "leak:libfontconfig\n");
    setenv("LSAN_OPTIONS", ("print_suppressions=0:suppressions=" + path("leaks")).c_str(), 1);
  }
  void makeTwo(const std::string& name, char first) const {
    succeed("create " + name + " --type 0 --name wall");
    succeed("screen add " + name + " --name left --rect 0,0,7,3");
    succeed("screen add " + name + " --name right --rect 8,0,15,1");
    std::string cells(64, '\0');
    for (std::size_t i = 0; i < 32; ++i) cells[2 * i] = i == 0 ? first : static_cast<char>(i);
    write("cells.npy", npy("<u2", "4, 8", cells));
    succeed("coef put " + name + " --type 1 --at 0,0 cells.npy");
  }
};

TEST_F(PictureTest, HeatmapShowsValuesExtremesAndWhatIsMissing) {
  makeTwo("wall.db", 100);
  succeed("heatmap wall.db -o block.png --type 1 --dtype uint16 --range 0,31 --title one");
  const long last = countPixels(path("block.png"), ColourMap(Palette::kSequential).at(1));
  EXPECT_TRUE(last >= 2 * kCell && last < 3 * kCell) << last;       // 31, and 100 beyond it
  EXPECT_LT(countPixels(path("block.png"), {242, 242, 242}), 100);  // only on the edges of texts
  succeed("heatmap wall.db -o wall.png --type 1 --dtype uint16 --wall");
  EXPECT_GT(countPixels(path("wall.png"), {242, 242, 242}), 20 * kCell);  // of 32 cells that were never stored
  succeed("heatmap cells.npy -o array.png --range 0,31 --title one");
  EXPECT_EQ(read("array.png"), read("block.png"));
  expectFailure(1, "screens: left, right", "heatmap wall.db -o no.png --type 1 --dtype uint16 --screen middle");
  EXPECT_FALSE(fs::exists(path("no.png")));
  const std::string stats = succeed("coef stats wall.db --type 1 --dtype uint16");
  EXPECT_NE(stats.find("  8.75  16.5  24.25  30.45  78.61      100  18.625 "), std::string::npos) << stats;
}

TEST_F(PictureTest, DiffTellsSameDifferentAndTrouble) {
  EXPECT_TRUE(!differ(std::nan(""), std::nan(""), {}) && differ(std::nan(""), 1, {1e9, 1}));
  EXPECT_TRUE(!differ(1, 1.5, {0.5, 0}) && differ(1, 1.5, {0.49, 0}) && !differ(-100, -101, {0, 0.01}));
  makeTwo("a.db", 0);
  makeTwo("b.db", 9);
  EXPECT_EQ(succeed("diff a.db b.db --dtype uint16 --atol 9"), "");
  const std::string cells = "block of left, 0,0..7,3, type 1: 1 of 32 cells differ, ";
  const Outcome outcome = run("diff a.db b.db --dtype uint16 --atol 8 --heatmap d.png");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.out, cells + "most at 0,0, component 0: 0 -> 9\n");
  EXPECT_GE(countPixels(path("d.png"), {221, 221, 221}), 30 * kCell);
  succeed("data put b.db --type 4 cells.npy");
  EXPECT_EQ(run("diff b.db a.db").out, "only in b.db: data of type 4 (screen right)\n" + cells + "the first at 0,0\n");
  expectFailure(2, "no.db: there is no such file", "diff a.db no.db");
  expectFailure(2, "the key is wrong", "diff a.db b.db", "TOVRDB_KEY=another ");
  expectFailure(2, "would replace b.db", "diff a.db b.db --dtype uint16 --force --heatmap b.db");
}

}  // namespace
