#include <fmt/core.h>

#include <algorithm>
#include <fstream>

#include "tool/cells/CellBlock.h"
#include "tool/cells/CellNumbers.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/Screens.h"
#include "tool/database/StoredArea.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/FileInput.h"
#include "tool/io/Message.h"
#include "tool/pictures/GatheredNumbers.h"
#include "tool/pictures/HeatmapPicture.h"
#include "tool/pictures/HeatmapWords.h"
#include "tool/system/Paths.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  OutputOptions output;
  std::optional<std::int32_t> type;
  std::string screen;
  std::optional<Rect> rect;
  bool wall = false;
  std::optional<Dtype> dtype;
  std::size_t component = 0;
  std::optional<NumberRange> range;
  std::optional<NumberRange> percentiles;
  std::string unit;
  std::string title;
};

bool isArray(const std::string& path) {
  char start[6] = {};
  std::ifstream(pathOf(path), std::ios::binary).read(start, sizeof start);
  return std::string(start, sizeof start) == "\x93NUMPY";
}

void addCells(GatheredNumbers& numbers, const Rect& rect, const CellBlock& cells, const Dtype& dtype,
              std::size_t component) {
  requireComponent(cells.cellBytes, dtype, component);
  numbers.add(rect, [&](std::int32_t y, double* row) { readRow(cells, dtype, component, rect, y, row); });
}

std::string nameOf(const std::string& path) { return textOf(pathOf(path).filename()); }

GatheredNumbers fromArray(const Options& options, Heatmap& heatmap) {
  if (options.type || options.wall || options.dtype || !options.screen.empty()) {
    throw ToolError(kUsage,
                    "it is an array, which tells its own type and has no screens: leave out --type, --dtype, "
                    "--screen and --wall");
  }
  NpyArray array = parseNpy(readWholeFile(options.file), options.file);
  const Dtype dtype = array.dtype;
  const CellBlock cells = blockFromArray(std::move(array), std::nullopt, CellPair{});
  const Rect region = options.rect.value_or(cells.rect);
  if (!holds(cells.rect, region)) {
    throw ToolError(kUsage, "the rectangle {} lies outside the array, {}", toText(region), toText(cells.rect));
  }
  GatheredNumbers numbers(region, Merge::kMean);
  addCells(numbers, region, cells, dtype, options.component);
  heatmap.title = fmt::format("{}: component {}", nameOf(options.file), options.component);
  return numbers;
}

Rect regionOf(const Options& options, const std::vector<StoredScreen>& screens, const std::vector<StoredArea>& areas) {
  if (options.rect) return *options.rect;
  if (!options.screen.empty()) return screenNamed(screens, options.screen).rect;
  Rect region = areas.front().rect;
  if (areas.size() == 1 && !options.wall) return region;
  for (const StoredArea& area : areas) region = united(region, area.rect);
  for (const StoredScreen& screen : screens) region = united(region, screen.rect);
  return region;
}

// Of what lies in the region, at least in part.
std::vector<Outline> outlinesOf(const Options& options, const Rect& region, const std::vector<StoredScreen>& screens,
                                const std::vector<StoredArea>& areas) {
  std::vector<Outline> outlines;
  for (const StoredScreen& screen : screens) {
    if (!options.screen.empty() && screen.name != options.screen) continue;
    if (common(screen.rect, region)) outlines.push_back({screen.rect, screen.name});
  }
  for (const StoredArea& area : areas) {
    const bool same = std::any_of(outlines.begin(), outlines.end(),
                                  [&](const Outline& outline) { return outline.rect == area.rect; });
    if (!same && common(area.rect, region)) outlines.push_back({area.rect, fmt::format("area {}", area.id), true});
  }
  return outlines;
}

GatheredNumbers fromDatabase(Context& context, const Options& options, Heatmap& heatmap) {
  if (!options.type || !options.dtype) {
    throw ToolError(kUsage, "a database takes --type and --dtype: it does not tell the type of its numbers");
  }
  Session session = openDatabase(context, options.file);
  const auto screens = storedScreens(session);
  for (const StoredScreen& screen : screens) requireSound(screen.rect, "screen " + screen.name);
  if (!options.screen.empty()) screenNamed(screens, options.screen);
  const auto areas = areasOfType(session, *options.type, options.screen);
  GatheredNumbers numbers(regionOf(options, screens, areas), Merge::kMean);
  bool overlap = false;
  for (const StoredArea& area : areas) {
    const std::optional<Rect> part = common(area.rect, numbers.raster().region());
    if (!part) continue;
    overlap = overlap || numbers.overlaps(*part);
    if (numbers.covered(*part)) continue;
    addCells(numbers, *part, readCells(session, area, *part), *options.dtype, options.component);
  }
  session.close();
  if (overlap) message("note: areas overlap; where they do, the one that was stored first is drawn");
  heatmap.outlines = outlinesOf(options, numbers.raster().region(), screens, areas);
  heatmap.title = fmt::format("{}: type {}, component {}{}", nameOf(options.file), *options.type, options.component,
                              options.screen.empty() ? "" : ", screen " + options.screen);
  return numbers;
}

void colourValues(const Options& options, const GatheredNumbers& numbers, Heatmap& heatmap) {
  const NumberRange percents = options.percentiles.value_or(NumberRange(1, 99));
  setColours(numbers, options.range ? *options.range : numbers.percentileRange(percents), heatmap);
  heatmap.notes.push_back(options.range
                              ? "Colours span the range that was given."
                              : fmt::format("Colours span the percentiles {} to {} of {} cells.",
                                            numberText(percents.first), numberText(percents.second), numbers.count()));
}

void heatmap(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.file);
  Heatmap picture;
  const GatheredNumbers numbers =
      isArray(options.file) ? fromArray(options, picture) : fromDatabase(context, options, picture);
  if (!options.title.empty()) picture.title = options.title;
  picture.label = options.unit.empty() ? "component " + std::to_string(options.component) : options.unit;
  colourValues(options, numbers, picture);
  picture.notes.push_back(scaleNote(numbers.raster().scale(), Merge::kMean));
  const auto png = drawHeatmap(numbers.raster(), picture);
  output.write(png);
  output.commit();
}

}  // namespace

void addHeatmapCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("heatmap", "Draw one number of every cell as a PNG picture", &Options::file, heatmap);
  command.footer(
      "Examples:\n"
      "  tovrdb heatmap wall.db -o wall.png --type 1 --dtype uint16 --wall --unit 'gain of red (1/16384)'\n"
      "  tovrdb heatmap block.npy -o block.png --component 4 --range 0,16384\n\n"
      "Without --rect, --screen and --wall the only area of the type is drawn, of several the whole wall.\n"
      "Colours are viridis. Cells beyond the range get the end's colour, and the bar's pointed end tells how far they\n"
      "go; hatched grey means no cells. Regions of more than 1280 x 800 cells are made smaller: a pixel then shows "
      "the\n"
      "mean of its cells.");
  command.add_option("FILE", options.file, "The database file, or a .npy array")->required();
  addOutput(command, options.output);
  command.add_option("--type", options.type, "The coefficient type, in databases");
  addDtype(command, options.dtype, "Type of the numbers in a cell, in databases (uint16, float32, ...)");
  command.add_option("--component", options.component, "Which number of each cell, from 0")->capture_default_str();
  CLI::Option* rect = addRect(command, options.rect, "Only these cells, both edges inclusive");
  CLI::Option* screen = command.add_option("--screen", options.screen, "Only this screen");
  command.add_flag("--wall", options.wall, "All screens in their places")->excludes(rect)->excludes(screen);
  CLI::Option* range = addNumberRange(command, "--range", options.range, "The numbers of the first and last colour");
  addPercentRange(command, "--percentile", options.percentiles, "Instead, the percents of cells below them [1,99]")
      ->excludes(range);
  command.add_option("--unit", options.unit, "Text beside the colour bar")->type_name("TEXT");
  command.add_option("--title", options.title, "Text above the picture [the file and what is drawn]")
      ->type_name("TEXT");
}

}  // namespace tovrtool
