// One raster of numbers on a drawing surface: cells, outlines, axes, colour bar, texts.
#pragma once

#include <string>
#include <vector>

#include "tool/pictures/AxisTicks.h"
#include "tool/pictures/Canvas.h"
#include "tool/pictures/ColourMap.h"
#include "tool/pictures/HeatmapPicture.h"
#include "tool/pictures/Raster.h"

namespace tovrdb::tool {

// How areas are outlined: many small ones would vanish under their outlines.
enum class AreaLines { kFull, kThin, kNone };

class HeatmapPanel {
 public:
  // Both outlive the panel.
  HeatmapPanel(const Raster& raster, const Heatmap& heatmap);

  int width() const { return layout_.width; }
  int height() const { return layout_.height; }
  // At the canvas's origin.
  void draw(Canvas& canvas) const;

 private:
  // Where everything lies.
  struct Layout {
    std::vector<TickLabel> columns;
    std::vector<TickLabel> rows;
    std::vector<TickLabel> bar;
    std::vector<std::string> notes;
    AreaLines areaLines = AreaLines::kFull;
    Box plot;
    Box scale;  // the bar without its tips
    double barLabelX = 0;
    double legendY = 0;
    double notesY = 0;
    int width = 0;
    int height = 0;
  };

  void arrange();
  void arrangeNotes(Canvas& measure);
  AreaLines linesOfAreas() const;
  double position(double value) const;
  std::string mostText() const { return "max " + heatmap_.textOf(heatmap_.most); }
  std::string leastText() const { return "min " + heatmap_.textOf(heatmap_.least); }
  Colour colourAt(int x, int y) const;
  Box boxOf(const Rect& rect) const;
  void drawCells(Canvas& canvas) const;
  void drawOutlines(Canvas& canvas) const;
  void drawName(Canvas& canvas, const Outline& outline, const Box& box, std::vector<Box>& taken) const;
  void drawAxes(Canvas& canvas) const;
  void drawBar(Canvas& canvas) const;
  void drawTip(Canvas& canvas, bool upper) const;
  void drawNotes(Canvas& canvas) const;

  const Raster& raster_;
  const Heatmap& heatmap_;
  ColourMap colours_;
  bool missing_;
  Layout layout_;
};

}  // namespace tovrdb::tool
