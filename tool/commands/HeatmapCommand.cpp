#include <fmt/core.h>

#include <algorithm>
#include <fstream>

#include "tool/cells/CellBlock.h"
#include "tool/cells/CellNumbers.h"
#include "tool/cells/NumberText.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/CellArguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/Mosaic.h"
#include "tool/database/NumberForms.h"
#include "tool/database/Screens.h"
#include "tool/database/StoredArea.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/FileInput.h"
#include "tool/io/Message.h"
#include "tool/io/TextList.h"
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
  FormOptions form;
  std::size_t component = 0;
  std::optional<NumberRange> range;
  std::optional<NumberRange> percentiles;
  std::string title;
};

bool isArray(const std::string& path) {
  char start[6] = {};
  std::ifstream(pathOf(path), std::ios::binary).read(start, sizeof start);
  return std::string(start, sizeof start) == "\x93NUMPY";
}

void addCells(GatheredNumbers& numbers, const Rect& rect, const CellBlock& cells, const NumberForm& form,
              std::size_t component) {
  requireComponent(cells.cellBytes, form.dtype, component);
  numbers.add(rect, [&](const CellRun& run, double* row) {
    readRow(cells, form, component, {run.left, run.y, run.right, run.y}, run.y, row);
  });
}

std::string nameOf(const std::string& path) { return textOf(pathOf(path).filename()); }

// How the picture says its numbers.
void describe(const NumberForm& form, const Options& options, Heatmap& heatmap) {
  heatmap.label = form.unit.empty() ? fmt::format("component {}", options.component) : form.unit;
  heatmap.textOf = [form](double number) { return form.text(number); };
}

GatheredNumbers fromArray(const Options& options, Heatmap& heatmap) {
  if (options.type || options.wall || options.form.dtype || !options.screen.empty()) {
    throw ToolError(kUsage,
                    "it is an array, which tells its own type and has no screens: leave out --type, --dtype, "
                    "--screen and --wall");
  }
  NpyArray array = parseNpy(readWholeFile(options.file), options.file);
  const NumberForm form = *chosenForm(options.form, NumberForm{array.dtype, {}, {}});
  const CellBlock cells = blockFromArray(std::move(array), std::nullopt, CellPair{});
  const Rect region = options.rect.value_or(cells.rect);
  if (!holds(cells.rect, region)) {
    throw ToolError(kUsage, "the rectangle {} lies outside the array, {}", toText(region), toText(cells.rect));
  }
  GatheredNumbers numbers(region, Merge::kMean);
  addCells(numbers, region, cells, form, options.component);
  describe(form, options, heatmap);
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
    const bool screen = area.screenRect == area.rect;  // is outlined already
    if (!screen) outlines.push_back({area.rect, fmt::format("area {}", area.id), true});
  }
  return outlines;
}

// Throws ToolError where the region shows no screen, or none of the areas.
void requireSomething(const Rect& region, const std::vector<StoredScreen>& screens,
                      const std::vector<StoredArea>& areas) {
  const auto inRegion = [&](const auto& each) { return common(each.rect, region).has_value(); };
  if (std::any_of(areas.begin(), areas.end(), inRegion)) return;
  std::vector<std::string> names;
  for (const StoredScreen& screen : screens) names.push_back(fmt::format("{} ({})", screen.name, toText(screen.rect)));
  if (std::none_of(screens.begin(), screens.end(), inRegion)) {
    throw ToolError(kRefused, "the rectangle {} lies outside every screen; screens: {}", toText(region),
                    shortList(names));
  }
  throw ToolError(kRefused, "no area of type {} has cells in {}; {}", areas.front().type, toText(region),
                  insteadOf(region, areas));
}

// Each area is read once, unless earlier ones hide it. One alone may be large and little of it drawn: the library then
// deciphers no more than that.
void gather(Session& session, const std::vector<StoredArea>& areas, const Options& options, GatheredNumbers& numbers) {
  bool overlap = false;
  for (const StoredArea& area : areas) {
    const Rect part = *common(area.rect, numbers.raster().region());
    overlap = overlap || numbers.covered().meets(part);
    if (numbers.covered().holds(part)) continue;
    const CellBlock cells = areas.size() == 1 ? readCells(session, area, part) : readBlock(session, area);
    addCells(numbers, part, cells, requireForm({area}, options.form), options.component);
  }
  if (overlap) message("note: areas overlap; where they do, the one that was stored first is drawn");
}

GatheredNumbers fromDatabase(Context& context, const Options& options, Heatmap& heatmap) {
  if (!options.type) throw ToolError(kUsage, "a database takes --type");
  Session session = openDatabase(context, options.file);
  const auto screens = storedScreens(session);
  for (const StoredScreen& screen : screens) requireSound(screen.rect, "screen " + screen.name);
  if (!options.screen.empty()) screenNamed(screens, options.screen);
  const auto areas = areasOfType(session, *options.type, options.screen);
  const Rect region = regionOf(options, screens, areas);
  requireSomething(region, screens, areas);
  GatheredNumbers numbers(region, Merge::kMean);
  const auto drawn = areasMeeting(areas, region);
  gather(session, drawn, options, numbers);
  session.close();
  describe(requireForm({drawn.front()}, options.form), options, heatmap);
  heatmap.outlines = outlinesOf(options, region, screens, drawn);
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
      "  tovrdb heatmap wall.db -o wall.png --type 1 --wall --scale 1/16384 --unit 'gain of red'\n"
      "  tovrdb heatmap block.npy -o block.png --component 4 --range 0,16384\n\n"
      "Without --rect, --screen and --wall the only area of the type is drawn, of several the whole wall.\n"
      "Colours are viridis. Cells beyond the range get the end's colour, and the bar's pointed end tells how far they\n"
      "go; hatched grey means no cells. Regions of more than 1280 x 800 cells are made smaller: a pixel then shows "
      "the\n"
      "mean of its cells.");
  command.add_option("FILE", options.file, "The database file, or a .npy array")->required();
  addOutput(command, options.output);
  command.add_option("--type", options.type, "The coefficient type, in databases");
  addForm(command, options.form,
          "Type of the numbers in a cell, in databases (uint16, float32, ...) [as kept with the block]");
  command.add_option("--component", options.component, "Which number of each cell, from 0")->capture_default_str();
  CLI::Option* rect = addRect(command, options.rect, "Only these cells, both edges inclusive");
  CLI::Option* screen = command.add_option("--screen", options.screen, "Only this screen");
  command.add_flag("--wall", options.wall, "All screens in their places")->excludes(rect)->excludes(screen);
  CLI::Option* range = addNumberRange(command, "--range", options.range, "The numbers of the first and last colour");
  addPercentRange(command, "--percentile", options.percentiles, "Instead, the percents of cells below them [1,99]")
      ->excludes(range);
  command.add_option("--title", options.title, "Text above the picture [the file and what is drawn]")
      ->type_name("TEXT");
}

}  // namespace tovrtool
