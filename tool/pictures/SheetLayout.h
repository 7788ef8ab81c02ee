// Several pictures in one: the components of a cell side by side, screens one below the other.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tool/pictures/GatheredNumbers.h"
#include "tool/pictures/HeatmapPicture.h"

namespace tovrdb::tool {

struct PanelNumbers {
  std::string screen;  // empty: of all screens in their places
  std::size_t component = 0;
  GatheredNumbers numbers;
  Heatmap heatmap;
};

// One panel for every screen and component, screen by screen.
struct PanelPlan {
  std::size_t screens = 1;
  std::size_t components = 1;

  std::size_t count() const { return screens * components; }
  std::size_t columns() const;
  // The most pixels for the cells of one panel.
  PixelLimits limits() const;
};

// Throws Error if there are more panels than one picture can show.
void requirePanels(const PanelPlan& plan);

// Colours mean the same on all screens: `rangeOf` is called with the numbers of one component on all of them.
void setColours(std::vector<PanelNumbers>& panels,
                const std::function<NumberRange(const std::vector<double>&)>& rangeOf);

// The panels with their titles; `notes` concern all of them. A single panel gets `title` and the notes itself.
// REQUIRES: panels as planned, which outlive the sheet.
Sheet sheetOf(const PanelPlan& plan, const std::vector<PanelNumbers>& panels, Merge merge, const std::string& title,
              const std::vector<std::string>& notes);

}  // namespace tovrdb::tool
