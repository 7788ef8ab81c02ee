// Rasters of numbers as a picture: colours, axes in cells, colour bar, outlines, texts.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "client/cells/NumberForm.h"
#include "client/cells/Rect.h"
#include "tool/pictures/ColourMap.h"
#include "tool/pictures/Raster.h"

namespace tovrdb::tool {

struct Outline {
  Rect rect{};
  std::string name;
  bool area = false;  // of a screen otherwise
};

struct Heatmap {
  std::string title;
  std::string label;               // beside the colour bar
  std::vector<std::string> notes;  // below
  Palette palette = Palette::kSequential;
  double low = 0;  // the numbers of the first and the last colour; low < high
  double high = 1;
  double least = 0;  // of all cells; the end of the colour bar names them if they lie beyond low or high
  double most = 1;
  std::vector<Outline> outlines;
  std::function<std::string(double)> textOf = [](double number) { return numberText(number); };  // of a cell's number
};

// Pixels without cells show a pattern of two greys that no palette contains.
constexpr Colour kMissingGround{242, 242, 242};
constexpr Colour kMissingStroke{176, 176, 176};

// Several pictures in one, row by row.
struct Panel {
  const Raster* raster;  // outlives the drawing
  Heatmap heatmap;
};

struct Sheet {
  std::string title;  // title and notes are drawn for several panels only; a single one has its own
  std::vector<std::string> notes;
  int columns = 1;
  std::vector<Panel> panels;
};

// The bytes of a PNG, the same for the same input. Throws std::runtime_error if the picture cannot be drawn.
// REQUIRES: at least one panel.
std::vector<unsigned char> drawSheet(const Sheet& sheet);

}  // namespace tovrdb::tool
