#include "tool/pictures/SheetLayout.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "client/base/Error.h"

namespace tovrdb::tool {
namespace {

constexpr std::size_t kMostPanels = 64;
constexpr std::int64_t kAcross = 1500;  // pixels of the cells of all panels together
constexpr std::int64_t kDown = 1000;

std::string titleOf(const PanelPlan& plan, const PanelNumbers& panel) {
  if (plan.screens == 1) return fmt::format("component {}", panel.component);
  return plan.components == 1 ? panel.screen : fmt::format("{}, component {}", panel.screen, panel.component);
}

// How cells were mapped to pixels.
std::string scaleNote(const RasterScale& scale, Merge merge) {
  const auto times = [](auto across, auto down) { return fmt::format("{} x {}", across, down); };
  const std::string stretched = scale.square() ? "" : " Not drawn to scale: cells are not square here.";
  if (scale.across.cellsPerPixel > 1 || scale.down.cellsPerPixel > 1) {
    return fmt::format("A pixel shows the {} of {} cells.{}", merge == Merge::kMean ? "mean" : "largest difference",
                       times(scale.across.cellsPerPixel, scale.down.cellsPerPixel), stretched);
  }
  return fmt::format("A cell takes {} pixels.{}", times(scale.across.pixelsPerCell, scale.down.pixelsPerCell),
                     stretched);
}

// The colours span `range`; the bar names minimum and maximum if they lie beyond it.
void setColours(const GatheredNumbers& numbers, const NumberRange& range, Heatmap& heatmap) {
  heatmap.low = range.first;
  heatmap.high = range.second;
  const NumberRange extremes = !numbers.values().empty() ? numbers.extremes() : range;
  heatmap.least = extremes.first;
  heatmap.most = extremes.second;
}

// One note if all screens have the same scale, otherwise one per screen.
std::vector<std::string> scaleNotes(const PanelPlan& plan, const std::vector<PanelNumbers>& panels, Merge merge) {
  std::vector<std::string> notes;
  for (std::size_t i = 0; i < panels.size(); i += plan.components) {
    notes.push_back(scaleNote(panels[i].numbers.raster().scale(), merge));
  }
  if (std::count(notes.begin(), notes.end(), notes.front()) == static_cast<std::ptrdiff_t>(notes.size()))
    return {notes.front()};
  for (std::size_t i = 0; i < notes.size(); ++i) notes[i] = panels[i * plan.components].screen + ": " + notes[i];
  return notes;
}

}  // namespace

std::size_t PanelPlan::columns() const {
  if (screens > 1 && components > 1) return components;
  return count() <= 3 ? count() : static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count()))));
}

PixelLimits PanelPlan::limits() const {
  const PixelLimits alone;
  if (count() == 1) return alone;
  const auto across = static_cast<std::int64_t>(columns());
  const auto down = static_cast<std::int64_t>((count() + columns() - 1) / columns());
  return {std::clamp(kAcross / across, std::int64_t{160}, alone.across),
          std::clamp(kDown / down, std::int64_t{120}, alone.down)};
}

void requirePanels(const PanelPlan& plan) {
  if (plan.count() <= kMostPanels) return;
  throw Error(kInvalid, "{} screens with {} components are more than the {} pictures that one can hold: {}",
              plan.screens, plan.components, kMostPanels,
              plan.screens > 1 ? "say which with --screen" : "draw them one by one, with --component");
}

void setColours(std::vector<PanelNumbers>& panels,
                const std::function<NumberRange(const std::vector<double>&)>& rangeOf) {
  for (PanelNumbers& panel : panels) {
    const auto same = [&](const PanelNumbers& other) { return other.component == panel.component; };
    const PanelNumbers& first = *std::find_if(panels.begin(), panels.end(), same);
    if (&first != &panel) {
      setColours(panel.numbers, {first.heatmap.low, first.heatmap.high}, panel.heatmap);
      continue;
    }
    std::vector<double> values;
    for (const PanelNumbers& each : panels) {
      if (same(each)) values.insert(values.end(), each.numbers.values().begin(), each.numbers.values().end());
    }
    setColours(panel.numbers, rangeOf(values), panel.heatmap);
  }
}

Sheet sheetOf(const PanelPlan& plan, const std::vector<PanelNumbers>& panels, Merge merge, const std::string& title,
              const std::vector<std::string>& notes) {
  Sheet sheet{title, notes, static_cast<int>(plan.columns()), {}};
  const auto scales = scaleNotes(plan, panels, merge);
  sheet.notes.insert(sheet.notes.end(), scales.begin(), scales.end());
  for (const PanelNumbers& each : panels) {
    Panel panel{&each.numbers.raster(), each.heatmap};
    panel.heatmap.title = plan.count() == 1 ? title : titleOf(plan, each);
    if (plan.count() == 1) {
      panel.heatmap.notes.insert(panel.heatmap.notes.end(), sheet.notes.begin(), sheet.notes.end());
    }
    sheet.panels.push_back(std::move(panel));
  }
  return sheet;
}

}  // namespace tovrdb::tool
