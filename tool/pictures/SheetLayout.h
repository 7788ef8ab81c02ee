// Several pictures in one: the components of a cell side by side, the screens that have cells of their own below one
// another.
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

// What panels show: one each of every screen and component, screen by screen.
struct PanelPlan {
  std::size_t screens = 1;
  std::size_t components = 1;

  std::size_t count() const { return screens * components; }
  std::size_t columns() const;
  // The pixels that the cells of one get.
  PixelLimits limits() const;
};

// Throws Error for more panels than one picture can show.
void requirePanels(const PanelPlan& plan);

// Colours mean the same on all screens: `rangeOf` gets the numbers of one component on all of them.
void setColours(std::vector<PanelNumbers>& panels,
                const std::function<NumberRange(const std::vector<double>&)>& rangeOf);

// The panels with their titles; `notes` are those of all. One panel alone has `title` and the notes itself.
// REQUIRES: panels as planned, which outlive the sheet.
Sheet sheetOf(const PanelPlan& plan, const std::vector<PanelNumbers>& panels, Merge merge, const std::string& title,
              const std::vector<std::string>& notes);

}  // namespace tovrdb::tool
