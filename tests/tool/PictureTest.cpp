// Pictures: colours, axes and rasters as functions, and the program's heatmap, statistics and differences.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "tests/tool/ToolFixture.h"
#include "tool/pictures/AxisTicks.h"
#include "tool/pictures/Canvas.h"
#include "tool/pictures/ColourMap.h"
#include "tool/pictures/GatheredNumbers.h"
#include "tool/pictures/HeatmapPicture.h"

// What the font library keeps for the whole process is not the tests' to free; the sanitizer looks for this name.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

namespace {

using namespace tovrdb;
using namespace tovrdb::tool;
using namespace tovrtest;

// How light a colour is to the eye, by ITU-R BT.709's weights.
double luma(const Colour& colour) { return 0.2126 * colour.red + 0.7152 * colour.green + 0.0722 * colour.blue; }

TEST(ColourMapTest, LightnessRisesOrIsGreatestInTheMiddle) {
  const ColourMap values(Palette::kSequential), differences(Palette::kDiverging);
  EXPECT_EQ(values.at(-5), (Colour{0x44, 0x01, 0x54}));
  EXPECT_EQ(values.at(7), (Colour{0xFD, 0xE7, 0x25}));
  EXPECT_EQ(differences.at(0), (Colour{59, 76, 192}));
  EXPECT_EQ(differences.at(0.5), (Colour{221, 221, 221}));
  const double step = 1 / 64.0;
  for (double at = 0; at < 1; at += step) EXPECT_LT(luma(values.at(at)), luma(values.at(at + step))) << at;
  for (double at = 0; at < 0.5; at += step) {
    EXPECT_LT(luma(differences.at(at)), luma(differences.at(at + step))) << at;
    EXPECT_LT(luma(differences.at(1 - at)), luma(differences.at(1 - at - step))) << at;
  }
}

TEST(AxisTicksTest, AreFewRoundAndInside) {
  EXPECT_EQ(roundTicks(-3, 16, 5).values, (std::vector<double>{0, 5, 10, 15}));
  EXPECT_EQ(roundTicks(1e8, 3e9, 5).values, (std::vector<double>{1e9, 2e9, 3e9}));
  EXPECT_EQ(tickText(0.30000000000000004, 0.1), "0.3");
  EXPECT_EQ(tickText(-0.0, 5), "0");
  EXPECT_EQ(tickText(2e9, 5e8), "2e+09");
}

TEST(AxisTicksTest, NoTwoLabelsOfABarReadAlike) {
  for (const double low : {-1e16, -2.5, 0.0, 1e-12, 16777216.0, 1e9 + 0.125, 1e15, 1e300}) {
    for (double high = std::nextafter(low, 1e308); high < 1e305; high += std::max(1e-13, 9 * std::abs(high))) {
      std::set<std::string> texts;
      const auto labels = barLabels(low, high, 5);
      for (const TickLabel& label : labels) texts.insert(label.text);
      EXPECT_GE(texts.size(), 2U) << low << " " << high;
      EXPECT_EQ(texts.size(), labels.size()) << low << " " << high;
    }
  }
}

TEST(RasterTest, SmallRegionsGetSquareCellsAndLargeOnesShareAPixel) {
  const RasterScale small = fitScale({0, 0, 7, 3});
  EXPECT_EQ(small.across.pixelsPerCell, 48);
  EXPECT_TRUE(small.square());
  const RasterScale large = fitScale({0, 0, 3839, 2159});
  EXPECT_EQ(large.across.cellsPerPixel, 3);
  EXPECT_LE(large.down.pixels(), 800);
  const RasterScale thin = fitScale({0, 0, 99999, 0});
  EXPECT_GE(thin.down.pixels(), 48);
  EXPECT_FALSE(thin.square());
}

TEST(RasterTest, APixelShowsTheMeanOrTheNumberFarthestFromZero) {
  const Rect region{10, 20, 2569, 20};  // two cells a pixel
  Raster means(region, Merge::kMean), farthest(region, Merge::kFarthestFromZero);
  for (Raster* raster : {&means, &farthest}) raster->addRow(9, 20, {100, 1, -5, std::nan(""), 2});
  EXPECT_EQ(means.at(0, 0), -2);
  EXPECT_EQ(farthest.at(0, 0), -5);
  EXPECT_EQ(means.at(1, 0), 2);  // what is no number is left out
  EXPECT_FALSE(means.has(2, 0));
}

using Surface = std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)>;

long countPixels(const Surface& surface, const Colour& colour) {
  const int size = cairo_image_surface_get_width(surface.get()) * cairo_image_surface_get_height(surface.get());
  const auto* const pixels = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
  const auto word = static_cast<std::uint32_t>(colour.red << 16 | colour.green << 8 | colour.blue);
  return std::count_if(pixels, pixels + size, [&](std::uint32_t pixel) { return (pixel & 0xFFFFFF) == word; });
}

long countPixels(const std::string& path, const Colour& colour) {
  const Surface surface(cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy);
  EXPECT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS) << path;
  return countPixels(surface, colour);
}

long countPixels(const std::vector<unsigned char>& png, const Colour& colour) {
  auto rest = std::make_pair(png.data(), png.data() + png.size());
  const auto next = [](void* from, unsigned char* to, unsigned int length) {
    auto& [at, end] = *static_cast<std::pair<const unsigned char*, const unsigned char*>*>(from);
    if (end - at < static_cast<std::ptrdiff_t>(length)) return CAIRO_STATUS_READ_ERROR;
    std::copy(at, at + length, to);
    at += length;
    return CAIRO_STATUS_SUCCESS;
  };
  const Surface surface(cairo_image_surface_create_from_png_stream(next, &rest), cairo_surface_destroy);
  EXPECT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS);
  return countPixels(surface, colour);
}

// A picture without differences but for the cells that `mark` names.
std::vector<unsigned char> drawZeros(const Rect& region, const std::vector<CellPair>& mark,
                                     const std::vector<Outline>& outlines) {
  GatheredNumbers numbers(region, Merge::kFarthestFromZero);
  const std::vector<double> zeros(static_cast<std::size_t>(columnsOf(region)));
  for (std::int32_t y = region.top; y <= region.bottom; ++y) numbers.add({y, region.left, region.right}, zeros);
  for (const CellPair& cell : mark) numbers.mark(cell.x, cell.y);
  Heatmap heatmap;
  heatmap.palette = Palette::kDiverging;
  heatmap.low = -1;
  heatmap.outlines = outlines;
  return drawSheet({"", {}, 1, {{&numbers.raster(), heatmap}}});
}

constexpr Colour kNoDifference{221, 221, 221};
constexpr Colour kFrame{0, 0, 0};

TEST(HeatmapPictureTest, OneCellOfAWholeScreenIsFramedAndNotHidden) {
  const Rect screen{0, 0, 1919, 1079};
  const auto plain = drawZeros(screen, {}, {});
  for (const CellPair& cell : {CellPair{700, 500}, CellPair{0, 0}, CellPair{1919, 1079}}) {
    const auto marked = drawZeros(screen, {cell}, {});
    EXPECT_GE(countPixels(marked, kFrame) - countPixels(plain, kFrame), 16) << cell.x;
    EXPECT_GE(countPixels(plain, kNoDifference) - countPixels(marked, kNoDifference), 16) << cell.x;
  }
  const auto alone = drawZeros({0, 0, 0, 0}, {{0, 0}}, {});
  EXPECT_GE(countPixels(alone, kNoDifference), 48 * 48);
}

TEST(HeatmapPictureTest, OutlinesOfAreasThinOutAndGoBeforeTheyBuryTheCells) {
  const auto coloured = [](std::int32_t size) {  // the share of the picture that still shows its cells
    std::vector<Outline> outlines;
    for (std::int32_t y = 0; y < 400; y += size) {
      for (std::int32_t x = 0; x < 500; x += size) outlines.push_back({{x, y, x + size - 1, y + size - 1}, "", true});
    }
    const Rect region{0, 0, 499, 399};
    return static_cast<double>(countPixels(drawZeros(region, {}, outlines), kNoDifference)) /
           static_cast<double>(countPixels(drawZeros(region, {}, {}), kNoDifference));
  };
  for (const std::int32_t size : {100, 40, 20, 10, 5}) EXPECT_GT(coloured(size), 0.85) << size;
  EXPECT_LT(coloured(100), 1);
  EXPECT_NEAR(coloured(10), 1, 1e-3);
}

TEST(CanvasTest, TextsInScriptsThatTheFaceLacksComeFromOtherFonts) {
  Canvas canvas(1, 1);
  // Square characters; the box that stands for a missing one is narrower.
  EXPECT_NEAR(canvas.textWidth("\u5DE6\u5C4F\u30B7", {20, false, {}}), 60, 1);
  const std::string cut = canvas.shortened("\u5DE6\u5C4F\u30B7\u5DE6", 50, {20, false, {}});
  EXPECT_EQ(cut, "\u5DE6\u2026");
  EXPECT_GT(canvas.textWidth("\u0642\u0646\u0627\u0629", {20, false, {}}), 0);
}

constexpr long kCell = 48L * 48;  // pixels
constexpr Colour kNothing{242, 242, 242};
constexpr Colour kSame{221, 221, 221};

struct PictureTest : ToolTest {
  // A database with two screens and a block on the first: the cells 0 to 31, but for the first of them.
  void makeWallWith(const std::string& name, char first) const {
    succeed("create " + name + " --type 0 --name wall");
    succeed("screen add " + name + " --name left --rect 0,0,7,3");
    succeed("screen add " + name + " --name right --rect 8,0,15,1");
    std::string numbers;
    for (int i = 0; i < 32; ++i) numbers += {static_cast<char>(i == 0 ? first : i), '\0'};
    write("cells.npy", npy("<u2", "4, 8", numbers));
    succeed("coef put " + name + " --type 1 --at 0,0 cells.npy");
  }
};

TEST_F(PictureTest, HeatmapShowsValuesExtremesAndWhatIsMissing) {
  makeWallWith("wall.db", 100);
  succeed("heatmap wall.db -o block.png --type 1 --range 0,31 --title one");
  const long last = countPixels(path("block.png"), ColourMap(Palette::kSequential).at(1));
  EXPECT_GE(last, 2 * kCell);  // 31, and 100 beyond it
  EXPECT_LT(last, 3 * kCell);
  EXPECT_LT(countPixels(path("block.png"), kNothing), 100);  // only on the edges of texts
  succeed("heatmap wall.db -o wall.png --type 1 --wall");
  EXPECT_GT(countPixels(path("wall.png"), kNothing), 20 * kCell);  // of 32 cells that were never stored
  succeed("heatmap cells.npy -o array.png --range 0,31 --title one");
  EXPECT_EQ(read("array.png"), read("block.png"));
  expectFailure(1, "screens: left, right", "heatmap wall.db -o no.png --type 1 --screen middle");
  EXPECT_TRUE(contains(succeed("coef stats wall.db --type 1"), "  8.75  16.5  24.25  30.45  78.61 "));
}

TEST_F(PictureTest, DiffTellsSameDifferentAndTrouble) {
  const std::string differing = "block of left, 0,0,7,3, type 1: 1 of 32 cells differ, most at 0,0, component 0: ";
  makeWallWith("a.db", 0);
  makeWallWith("b.db", 9);
  EXPECT_EQ(succeed("diff a.db b.db --atol 9"), "");
  const Outcome outcome = run("diff a.db b.db --atol 8 --heatmap d.png");
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.out, differing + "0 -> 9\n");
  EXPECT_GE(countPixels(path("d.png"), kSame), 30 * kCell);
  succeed("data put b.db --type 4 cells.npy");
  EXPECT_EQ(run("diff b.db a.db").out, "only in b.db: data of type 4 (screen right)\n" + differing + "9 -> 0\n");
  expectFailure(3, "no.db: there is no such file", "diff a.db no.db");
  expectFailure(4, "the key is wrong", "diff a.db b.db", "TOVRDB_KEY=another ");
  expectFailure(2, "would replace b.db", "diff a.db b.db --force --heatmap b.db");
}

TEST_F(PictureTest, WhatTheToleranceLetsPassIsDrawnAsNoDifference) {
  makeWallWith("a.db", 0);
  makeWallWith("b.db", 9);
  std::string numbers;
  for (int i = 0; i < 32; ++i) numbers += {static_cast<char>(i == 0 ? 100 : i + 1), '\0'};
  write("cells.npy", npy("<u2", "4, 8", numbers));
  succeed("coef put b.db --type 1 --at 0,0 cells.npy");
  EXPECT_TRUE(contains(run("diff a.db b.db --atol 60 --heatmap t.png").out, ": 1 of 32 cells differ"));
  EXPECT_GE(countPixels(path("t.png"), kSame), 31 * kCell - kCell / 4);
}

TEST_F(PictureTest, ASheetHasAPictureOfEveryComponentAndOfEveryScreenThatLiesOnAnother) {
  std::string cells(4 * 3, '\0');
  for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = static_cast<char>(i % 3 == 1 ? 40 : i);
  write("cells.npy", npy("|u1", "2, 2, 3", cells));
  succeed("create wall.db --type 1");
  for (const char* screen : {"left", "right"}) {
    succeed("coef put wall.db --type 1 --screen " + std::string(screen) + " --at 0,0 cells.npy");
  }
  const Colour last = ColourMap(Palette::kSequential).at(1);
  succeed("heatmap cells.npy -o array.png --range 0,40 --sheet");
  const long one = countPixels(path("array.png"), last);
  EXPECT_GE(one, 4 * kCell);  // one of three components
  succeed("heatmap wall.db -o wall.png --type 1 --range 0,40 --sheet");
  EXPECT_GE(countPixels(path("wall.png"), last), 8 * kCell);
  succeed("heatmap wall.db -o left.png --type 1 --range 0,40 --sheet --screen left");
  EXPECT_LT(countPixels(path("left.png"), last), 8 * kCell);
  expectFailure(2, "exclude each other", "heatmap wall.db -o no.png --type 1 --sheet --component 1");
}

}  // namespace
