#include "tool/pictures/HeatmapBuild.h"

#include <fmt/core.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/cells/CellBlock.h"
#include "client/cells/CellNumbers.h"
#include "client/cells/NumberForm.h"
#include "client/contents/AreaNames.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"
#include "client/disk/FileInput.h"
#include "client/disk/FileOutput.h"
#include "client/disk/Platform.h"
#include "client/reading/AreaLookup.h"
#include "client/reading/Mosaic.h"
#include "client/reading/NumberForms.h"
#include "client/session/Damage.h"
#include "tool/pictures/HeatmapPicture.h"
#include "tool/pictures/SheetLayout.h"

namespace tovrdb::tool {
namespace {

// Screens that are drawn together, and their areas: all of them, or a screen alone.
struct Group {
  std::string screen;  // empty: all
  std::vector<StoredScreen> screens;
  std::vector<StoredArea> areas;
};

class Builder {
 public:
  explicit Builder(const HeatmapQuestion& question) : question_(question) {}

  HeatmapAnswer fromArray();
  HeatmapAnswer fromDatabase(Session& session);

 private:
  std::vector<std::size_t> componentsOf(std::int32_t cellBytes) const;
  void addPanel(const std::string& screen, std::size_t component, const Rect& region, std::vector<Outline> outlines);
  std::vector<double> numbersOf(const CellBlock& cells, std::size_t component, const CellRun& run) const;
  Rect regionOf(const std::vector<StoredScreen>& screens, const std::vector<StoredArea>& areas) const;
  std::vector<Outline> outlinesOf(const Rect& region, const Group& group, const std::vector<StoredArea>& areas) const;
  std::vector<StoredArea> drawableAreas(std::vector<StoredArea> areas);
  std::vector<StoredArea> soundAreas(const std::vector<Group>& groups) const;
  std::optional<CellBlock> readIfSound(Session& session, const StoredArea& area, const Rect& part, bool alone);
  void drawGroups(Session& session, const std::vector<Group>& groups);
  void drawGroup(Session& session, const Group& group);
  void gather(Session& session, const std::vector<StoredArea>& areas, std::size_t firstPanel);
  std::string colourPanels();
  HeatmapAnswer finish(const std::string& subject);

  const HeatmapQuestion& question_;
  NumberForm form_;
  PanelPlan plan_;
  std::vector<PanelNumbers> panels_;
  std::vector<std::string> notes_;
  bool overlap_ = false;
};

std::vector<std::size_t> Builder::componentsOf(std::int32_t cellBytes) const {
  if (!question_.sheet) return {question_.component};
  std::vector<std::size_t> components(valuesPerCell(cellBytes, form_.dtype));
  std::iota(components.begin(), components.end(), std::size_t{0});
  return components;
}

void Builder::addPanel(const std::string& screen, std::size_t component, const Rect& region,
                       std::vector<Outline> outlines) {
  PanelNumbers& panel =
      panels_.emplace_back(PanelNumbers{screen, component, GatheredNumbers(region, Merge::kMean, plan_.limits()), {}});
  panel.heatmap.label = form_.unit.empty() ? fmt::format("component {}", component) : form_.unit;
  panel.heatmap.textOf = [form = form_](double number) { return form.text(number); };
  panel.heatmap.outlines = std::move(outlines);
}

std::vector<double> Builder::numbersOf(const CellBlock& cells, std::size_t component, const CellRun& run) const {
  std::vector<double> numbers(static_cast<std::size_t>(run.right - run.left) + 1);
  readRow(cells, form_, component, {run.left, run.y, run.right, run.y}, run.y, numbers.data());
  return numbers;
}

HeatmapAnswer Builder::fromArray() {
  NpyArray array = parseNpy(readWholeFile(question_.file), question_.file);
  form_ = *chosenForm(question_.form, NumberForm{array.dtype, {}, {}});
  const CellBlock cells = blockFromArray(std::move(array), std::nullopt, CellPair{});
  const Rect region = question_.rect.value_or(cells.rect);
  if (!holds(cells.rect, region)) {
    throw Error(kInvalid, "the rectangle {} lies outside the array, {}", toText(region), toText(cells.rect));
  }
  const auto components = componentsOf(cells.cellBytes);
  plan_ = {1, components.size()};
  requirePanels(plan_);
  for (const std::size_t component : components) {
    addPanel("", component, region, {});
    requireComponent(cells.cellBytes, form_.dtype, component);
    for (std::int32_t y = region.top; y <= region.bottom; ++y) {
      const CellRun row{y, region.left, region.right};
      panels_.back().numbers.add(row, numbersOf(cells, component, row));
    }
  }
  return finish("");
}

// If screens are found by name, each has cells of its own: screens that overlap are drawn apart.
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

Rect Builder::regionOf(const std::vector<StoredScreen>& screens, const std::vector<StoredArea>& areas) const {
  if (question_.rect) return *question_.rect;
  if (!question_.screen.empty()) return screenNamed(screens, question_.screen).rect;
  Rect region = areas.front().rect;
  if (areas.size() == 1 && !question_.wall) return region;
  for (const StoredArea& area : areas) region = united(region, area.rect);
  for (const StoredScreen& screen : screens) region = united(region, screen.rect);
  return region;
}

// Of screens and areas that overlap the region.
std::vector<Outline> Builder::outlinesOf(const Rect& region, const Group& group,
                                         const std::vector<StoredArea>& areas) const {
  std::vector<Outline> outlines;
  for (const StoredScreen& screen : group.screens) {
    if (!question_.screen.empty() && screen.name != question_.screen) continue;
    if (common(screen.rect, region)) outlines.push_back({screen.rect, screen.name});
  }
  for (const StoredArea& area : areas) {
    const bool isOutlined = area.screenRect == area.rect;
    if (!isOutlined) outlines.push_back({area.rect, fmt::format("area {}", area.id), true});
  }
  return outlines;
}

// Throws Error if the region overlaps no screen, or none of the areas.
void requireOverlap(const Rect& region, const std::vector<StoredScreen>& screens,
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

// Nothing if the area is damaged. If it is the only one, no more of it is decrypted than is drawn.
std::optional<CellBlock> Builder::readIfSound(Session& session, const StoredArea& area, const Rect& part, bool alone) {
  try {
    return alone ? readCells(session, area, part) : readBlock(session, area);
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    session.resumeReading();
    notes_.push_back(fmt::format("{} is hatched: {}", nameOf(area), error.what()));
    return std::nullopt;
  }
}

// Reads each area that shows once, for all panels from `firstPanel` on; cells of unreadable ones are not numbers.
void Builder::gather(Session& session, const std::vector<StoredArea>& areas, std::size_t firstPanel) {
  const auto open = [&](const StoredArea& area, const Rect& part) -> VisitRun {
    const auto cells = readIfSound(session, area, part, areas.size() == 1);
    for (std::size_t i = firstPanel; cells && i < panels_.size(); ++i) {
      requireComponent(cells->cellBytes, form_.dtype, panels_[i].component);
    }
    return [this, firstPanel, cells](const CellRun& run) {
      const std::size_t count = static_cast<std::size_t>(run.right - run.left) + 1;
      for (std::size_t i = firstPanel; i < panels_.size(); ++i) {
        panels_[i].numbers.add(run, cells ? numbersOf(*cells, panels_[i].component, run)
                                          : std::vector<double>(count, std::numeric_limits<double>::quiet_NaN()));
      }
    };
  };
  const Rect region = panels_[firstPanel].numbers.raster().region();
  overlap_ = composeAreas(areas, region, open).overlapping() || overlap_;
}

void Builder::drawGroup(Session& session, const Group& group) {
  const Rect region = regionOf(group.screens, group.areas);
  const auto drawn = areasMeeting(group.areas, region);
  const auto sound =
      std::find_if(drawn.begin(), drawn.end(), [](const StoredArea& area) { return area.fault.empty(); });
  std::vector<std::size_t> components(plan_.components, question_.component);
  if (question_.sheet) std::iota(components.begin(), components.end(), std::size_t{0});
  if (sound != drawn.end()) components = componentsOf(sound->cellBytes);
  const std::size_t firstPanel = panels_.size();
  for (const std::size_t component : components) {
    addPanel(group.screen, component, region, outlinesOf(region, group, drawn));
  }
  gather(session, drawn, firstPanel);
}

// The areas without faults of which cells are drawn. Throws Error if there are none.
std::vector<StoredArea> Builder::soundAreas(const std::vector<Group>& groups) const {
  std::vector<StoredArea> sound;
  for (const Group& group : groups) {
    const Rect region = regionOf(group.screens, group.areas);
    for (StoredArea& area : areasShowing(group.areas, region).areas) {
      if (area.fault.empty()) sound.push_back(std::move(area));
    }
  }
  if (sound.empty()) requireReadable(groups.front().areas.front());
  return sound;
}

// All groups have one number form, so that colours mean the same everywhere.
void Builder::drawGroups(Session& session, const std::vector<Group>& groups) {
  const auto sound = soundAreas(groups);
  form_ = requireForm(sound, question_.form);
  plan_ = {groups.size(), componentsOf(sound.front().cellBytes).size()};
  requirePanels(plan_);
  for (const Group& group : groups) drawGroup(session, group);
  if (panels_.size() != plan_.count()) {
    throw Error(kInvalid, "the cells of the screens have different numbers of components").suggest(Remedy::kGiveScreen);
  }
  if (overlap_) notes_.push_back("areas overlap; where they do, the one that was stored first is drawn");
}

std::vector<StoredArea> Builder::drawableAreas(std::vector<StoredArea> areas) {
  constexpr std::int64_t kMostRows = 100000;  // of an area with a fault; the others have blocks of their size
  std::vector<StoredArea> drawable;
  for (StoredArea& area : areas) {
    if (area.fault.empty() || (isSound(area.rect) && rowsOf(area.rect) <= kMostRows)) {
      drawable.push_back(std::move(area));
    } else {
      notes_.push_back(fmt::format("area {} is left out: {}", area.id, area.fault));
    }
  }
  if (drawable.empty()) requireReadable(areas.front());
  return drawable;
}

HeatmapAnswer Builder::fromDatabase(Session& session) {
  const auto screens = storedScreens(session);
  for (const StoredScreen& screen : screens) requireSound(screen.rect, "screen " + screen.name);
  if (!question_.screen.empty()) screenNamed(screens, question_.screen);
  const auto areas = drawableAreas(areasOfType(session, *question_.type, question_.screen));
  const Rect region = regionOf(screens, areas);
  requireOverlap(region, screens, areas);
  const bool byName = session.manager().getDBType() == 1;
  drawGroups(session, groupsOf(byName, screens, areasMeeting(areas, region)));
  session.close();
  const std::string screen = question_.screen.empty() ? "" : "screen " + question_.screen + ", ";
  return finish(fmt::format("type {}, {}", *question_.type, screen));
}

// Sets the colours. Returns what they span, in words.
std::string Builder::colourPanels() {
  const NumberRange percents = question_.percentiles.value_or(NumberRange(1, 99));
  setColours(panels_, [&](const std::vector<double>& values) {
    return question_.range ? *question_.range : percentileRange(values, percents);
  });
  if (question_.range) return "Colours span the range that was given.";
  std::size_t cells = 0;
  for (const PanelNumbers& panel : panels_) cells += panel.numbers.values().size();
  return fmt::format("{} the percentiles {} to {} of {} cells.",
                     plan_.components > 1 ? "Each component's colours span" : "Colours span",
                     numberText(percents.first), numberText(percents.second), cells / plan_.components);
}

HeatmapAnswer Builder::finish(const std::string& subject) {
  const std::string components = question_.sheet ? "all components" : fmt::format("component {}", question_.component);
  const std::string title = question_.title.empty()
                                ? fmt::format("{}: {}{}", fileNameOf(question_.file), subject, components)
                                : question_.title;
  const std::string colours = colourPanels();
  return {drawSheet(sheetOf(plan_, panels_, Merge::kMean, title, {colours})), std::move(notes_)};
}

}  // namespace

HeatmapAnswer heatmapOfArray(const HeatmapQuestion& question) { return Builder(question).fromArray(); }

HeatmapAnswer heatmapOfDatabase(Session& session, const HeatmapQuestion& question) {
  return Builder(question).fromDatabase(session);
}

}  // namespace tovrdb::tool
