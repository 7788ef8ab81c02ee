#include <fmt/core.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <numeric>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/cells/CellBlock.h"
#include "client/cells/CellNumbers.h"
#include "client/cells/NumberText.h"
#include "client/contents/AreaWords.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"
#include "client/disk/FileInput.h"
#include "client/disk/Platform.h"
#include "client/reading/AreaLookup.h"
#include "client/reading/Mosaic.h"
#include "client/reading/NumberForms.h"
#include "client/session/Damage.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/commands/coef/CellArguments.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/Message.h"
#include "tool/pictures/GatheredNumbers.h"
#include "tool/pictures/HeatmapPicture.h"
#include "tool/pictures/SheetLayout.h"

namespace tovrdb::tool {
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
  bool sheet = false;
  std::optional<NumberRange> range;
  std::optional<NumberRange> percentiles;
  std::string title;
};

bool isArray(const std::string& path) {
  char start[6] = {};
  std::ifstream(pathOf(path), std::ios::binary).read(start, sizeof start);
  return std::string(start, sizeof start) == "\x93NUMPY";
}

// Everything that is drawn.
struct Picture {
  PanelPlan plan;
  std::vector<PanelNumbers> panels;
  std::string title;
};

void addCells(GatheredNumbers& numbers, const Rect& rect, const CellBlock& cells, const NumberForm& form,
              std::size_t component) {
  requireComponent(cells.cellBytes, form.dtype, component);
  numbers.add(rect, [&](const CellRun& run, double* row) {
    readRow(cells, form, component, {run.left, run.y, run.right, run.y}, run.y, row);
  });
}

// How the picture says its numbers.
void describe(const NumberForm& form, PanelNumbers& panel) {
  panel.heatmap.label = form.unit.empty() ? fmt::format("component {}", panel.component) : form.unit;
  panel.heatmap.textOf = [form](double number) { return form.text(number); };
}

std::vector<std::size_t> componentsToDraw(const Options& options, std::int32_t cellBytes, const NumberForm& form) {
  if (!options.sheet) return {options.component};
  std::vector<std::size_t> components(valuesPerCell(cellBytes, form.dtype));
  std::iota(components.begin(), components.end(), std::size_t{0});
  return components;
}

std::string titleOf(const Options& options, const std::string& subject) {
  if (!options.title.empty()) return options.title;
  return subject + (options.sheet ? "all components" : fmt::format("component {}", options.component));
}

Picture fromArray(const Options& options) {
  if (options.type || options.wall || options.form.dtype || !options.screen.empty()) {
    throw Error(kInvalid,
                "it is an array, which tells its own type and has no screens: leave out --type, --dtype, "
                "--screen and --wall");
  }
  NpyArray array = parseNpy(readWholeFile(options.file), options.file);
  const NumberForm form = *chosenForm(options.form, NumberForm{array.dtype, {}, {}});
  const CellBlock cells = blockFromArray(std::move(array), std::nullopt, CellPair{});
  const Rect region = options.rect.value_or(cells.rect);
  if (!holds(cells.rect, region)) {
    throw Error(kInvalid, "the rectangle {} lies outside the array, {}", toText(region), toText(cells.rect));
  }
  const auto components = componentsToDraw(options, cells.cellBytes, form);
  Picture picture{{1, components.size()}, {}, titleOf(options, fileNameOf(options.file) + ": ")};
  requirePanels(picture.plan);
  for (const std::size_t component : components) {
    picture.panels.push_back({"", component, GatheredNumbers(region, Merge::kMean, picture.plan.limits()), {}});
    addCells(picture.panels.back().numbers, region, cells, form, component);
    describe(form, picture.panels.back());
  }
  return picture;
}

// The screens that are drawn together, and their areas: all of them, or one alone.
struct Group {
  std::string screen;  // empty: all
  std::vector<StoredScreen> screens;
  std::vector<StoredArea> areas;
};

// Where screens are found by name, each has cells of its own: those that would lie on one another are drawn apart.
std::vector<Group> groupsOf(bool byName, const std::vector<StoredScreen>& screens,
                            const std::vector<StoredArea>& areas) {
  if (!byName || !screensShareCells(areas)) return {{"", screens, areas}};
  std::vector<Group> groups;
  for (const StoredScreen& screen : screens) {
    Group group{screen.name, {screen}, {}};
    std::copy_if(areas.begin(), areas.end(), std::back_inserter(group.areas),
                 [&](const StoredArea& area) { return area.screenId == screen.id; });
    if (!group.areas.empty()) groups.push_back(std::move(group));
  }
  if (groups.empty()) return {{"", screens, areas}};  // areas of screens that do not exist
  return groups;
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

// Throws Error where the region shows no screen, or none of the areas.
void requireSomething(const Rect& region, const std::vector<StoredScreen>& screens,
                      const std::vector<StoredArea>& areas) {
  const auto inRegion = [&](const auto& each) { return common(each.rect, region).has_value(); };
  if (std::any_of(areas.begin(), areas.end(), inRegion)) return;
  std::vector<std::string> names;
  for (const StoredScreen& screen : screens) names.push_back(fmt::format("{} ({})", screen.name, toText(screen.rect)));
  if (std::none_of(screens.begin(), screens.end(), inRegion)) {
    throw Error(kRefused, "the rectangle {} lies outside every screen; screens: {}", toText(region), shortList(names));
  }
  throw Error(kRefused, "no area of type {} has cells in {}; {}", areas.front().type, toText(region),
              alternativesTo(region, areas).text);
}

// Nothing if the area is damaged, which is told. One alone may be large and little of it drawn: the library then
// deciphers no more than that.
std::optional<CellBlock> readIfSound(Session& session, const StoredArea& area, const Rect& part, bool alone) {
  try {
    return alone ? readCells(session, area, part) : readBlock(session, area);
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    session.resumeReading();
    message("note: {} is hatched: {}", nameOf(area), error.what());
    return std::nullopt;
  }
}

// Each area is read once for all panels, unless earlier ones hide it. Whether areas overlap.
bool gather(Session& session, const std::vector<StoredArea>& areas, const NumberForm& form,
            const std::vector<PanelNumbers*>& panels) {
  const GatheredNumbers& first = panels.front()->numbers;
  bool overlap = false;
  for (const StoredArea& area : areas) {
    const Rect part = *common(area.rect, first.raster().region());
    overlap = overlap || first.covered().meets(part);
    if (first.covered().holds(part)) continue;
    const auto cells = readIfSound(session, area, part, areas.size() == 1);
    for (PanelNumbers* panel : panels) {
      if (cells) {
        addCells(panel->numbers, part, *cells, form, panel->component);
      } else {
        panel->numbers.add(part, [](const CellRun& run, double* row) {
          std::fill(row, row + (run.right - run.left + 1), std::numeric_limits<double>::quiet_NaN());
        });
      }
    }
  }
  return overlap;
}

// Adds the panels of one group. Whether its areas overlap.
bool drawGroup(Session& session, const Group& group, const Rect& region, const NumberForm& form, const Options& options,
               Picture& picture) {
  const auto drawn = areasMeeting(group.areas, region);
  const auto sound =
      std::find_if(drawn.begin(), drawn.end(), [](const StoredArea& area) { return area.fault.empty(); });
  const std::size_t first = picture.panels.size();
  std::vector<std::size_t> components(picture.plan.components, options.component);
  if (options.sheet) std::iota(components.begin(), components.end(), std::size_t{0});
  if (sound != drawn.end()) components = componentsToDraw(options, sound->cellBytes, form);
  for (const std::size_t component : components) {
    GatheredNumbers numbers(region, Merge::kMean, picture.plan.limits());
    PanelNumbers& panel = picture.panels.emplace_back(PanelNumbers{group.screen, component, std::move(numbers), {}});
    describe(form, panel);
    panel.heatmap.outlines = outlinesOf(options, region, group.screens, drawn);
  }
  std::vector<PanelNumbers*> panels;
  for (std::size_t i = first; i < picture.panels.size(); ++i) panels.push_back(&picture.panels[i]);
  return gather(session, drawn, form, panels);
}

// The areas without faults of which cells are drawn. Throws Error if there are none.
std::vector<StoredArea> soundAreas(const std::vector<Group>& groups, const Options& options) {
  std::vector<StoredArea> sound;
  for (const Group& group : groups) {
    const Rect region = regionOf(options, group.screens, group.areas);
    for (StoredArea& area : areasShowing(group.areas, region).areas) {
      if (area.fault.empty()) sound.push_back(std::move(area));
    }
  }
  if (sound.empty()) requireReadable(groups.front().areas.front());
  return sound;
}

// One form for all: colours mean the same everywhere.
Picture drawGroups(Session& session, const std::vector<Group>& groups, const Options& options) {
  const auto sound = soundAreas(groups, options);
  const NumberForm form = requireForm(sound, options.form);
  Picture picture{{groups.size(), componentsToDraw(options, sound.front().cellBytes, form).size()}, {}, {}};
  requirePanels(picture.plan);
  bool overlap = false;
  for (const Group& group : groups) {
    const Rect region = regionOf(options, group.screens, group.areas);
    overlap = drawGroup(session, group, region, form, options, picture) || overlap;
  }
  if (picture.panels.size() != picture.plan.count()) {
    throw Error(kInvalid, "the cells of the screens have different numbers of components: say which with --screen");
  }
  if (overlap) message("note: areas overlap; where they do, the one that was stored first is drawn");
  return picture;
}

// Without those whose rectangle cannot be drawn, which are told.
std::vector<StoredArea> drawableAreas(std::vector<StoredArea> areas) {
  constexpr std::int64_t kMostRows = 100000;  // of an area with a fault; the others have blocks of their size
  std::vector<StoredArea> drawable;
  for (StoredArea& area : areas) {
    if (area.fault.empty() || (isSound(area.rect) && rowsOf(area.rect) <= kMostRows)) {
      drawable.push_back(std::move(area));
    } else {
      message("note: area {} is left out: {}", area.id, area.fault);
    }
  }
  if (drawable.empty()) requireReadable(areas.front());
  return drawable;
}

Picture fromDatabase(Context& context, const Options& options) {
  if (!options.type) throw Error(kInvalid, "a database takes --type");
  Session session = openDatabase(context, options.file);
  const auto screens = storedScreens(session);
  for (const StoredScreen& screen : screens) requireSound(screen.rect, "screen " + screen.name);
  if (!options.screen.empty()) screenNamed(screens, options.screen);
  const auto areas = drawableAreas(areasOfType(session, *options.type, options.screen));
  const Rect region = regionOf(options, screens, areas);
  requireSomething(region, screens, areas);
  const bool byName = session.manager().getDBType() == 1;
  Picture picture = drawGroups(session, groupsOf(byName, screens, areasMeeting(areas, region)), options);
  session.close();
  picture.title = titleOf(options, fmt::format("{}: type {}, {}", fileNameOf(options.file), *options.type,
                                               options.screen.empty() ? "" : "screen " + options.screen + ", "));
  return picture;
}

// Sets the colours, and says how.
std::string colourValues(const Options& options, Picture& picture) {
  const NumberRange percents = options.percentiles.value_or(NumberRange(1, 99));
  std::size_t cells = 0;  // of one component
  for (const PanelNumbers& panel : picture.panels) cells += panel.numbers.values().size();
  cells /= picture.plan.components;
  setColours(picture.panels, [&](const std::vector<double>& values) {
    return options.range ? *options.range : percentileRange(values, percents);
  });
  if (options.range) return "Colours span the range that was given.";
  return fmt::format("{} the percentiles {} to {} of {} cells.",
                     picture.plan.components > 1 ? "Each component's colours span" : "Colours span",
                     numberText(percents.first), numberText(percents.second), cells);
}

void heatmap(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.file);
  Picture picture = isArray(options.file) ? fromArray(options) : fromDatabase(context, options);
  const std::string colours = colourValues(options, picture);
  const auto png = drawSheet(sheetOf(picture.plan, picture.panels, Merge::kMean, picture.title, {colours}));
  output.write(png);
  output.commit();
}

}  // namespace

void addHeatmapCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("heatmap", "Draw the numbers of cells as a PNG picture", &Options::file, heatmap);
  command.footer(
      "Examples:\n"
      "  tovrdb heatmap wall.db -o wall.png --type 1 --wall --scale 1/16384 --unit 'gain of red'\n"
      "  tovrdb heatmap block.npy -o block.png --component 4 --range 0,16384\n\n"
      "Without --rect, --screen and --wall the only area of the type is drawn, of several the whole wall.\n"
      "Screens of a type-1 database that lie on one another are drawn side by side.\n"
      "Colours are viridis. Cells beyond the range get the end's colour, and the bar's pointed end tells how far they\n"
      "go; hatched grey means no cells. Regions of more than 1280 x 800 cells are made smaller: a pixel then shows "
      "the\n"
      "mean of its cells.");
  command.add_option("FILE", options.file, "The database file, or a .npy array")->required();
  addOutput(command, options.output);
  command.add_option("--type", options.type, "The coefficient type, in databases");
  addForm(command, options.form,
          "Type of the numbers in a cell, in databases (uint16, float32, ...) [as kept with the block]");
  CLI::Option* component =
      command.add_option("--component", options.component, "Which number of each cell, from 0")->capture_default_str();
  command
      .add_flag("--sheet", options.sheet, "All numbers of a cell, each with colours of its own unless --range is given")
      ->excludes(component);
  CLI::Option* rect = addRect(command, options.rect, "Only these cells, both edges inclusive");
  CLI::Option* screen = command.add_option("--screen", options.screen, "Only this screen");
  command.add_flag("--wall", options.wall, "All screens in their places")->excludes(rect)->excludes(screen);
  CLI::Option* range = addNumberRange(command, "--range", options.range, "The numbers of the first and last colour");
  addPercentRange(command, "--percentile", options.percentiles, "Instead, the percents of cells below them [1,99]")
      ->excludes(range);
  command.add_option("--title", options.title, "Text above the picture [the file and what is drawn]")
      ->type_name("TEXT");
}

}  // namespace tovrdb::tool
