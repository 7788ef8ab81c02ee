// Heatmaps of stored cells, or of a NumPy array: which panels there are, the numbers in them, their colours.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NumberForm.h"
#include "client/cells/Rect.h"
#include "client/session/Session.h"
#include "tool/pictures/GatheredNumbers.h"

namespace tovrdb::tool {

struct HeatmapQuestion {
  std::string file;
  std::optional<std::int32_t> type;  // of the coefficients; databases only
  std::string screen;                // empty: all
  std::optional<Rect> rect;
  bool wall = false;  // all screens in their places
  FormOptions form;
  std::size_t component = 0;
  bool sheet = false;                      // all components instead
  std::optional<NumberRange> range;        // the numbers of the first and last colour
  std::optional<NumberRange> percentiles;  // instead: the percents of cells below them
  std::string title;                       // empty: the file and what is drawn
};

struct HeatmapAnswer {
  std::vector<unsigned char> png;
  std::vector<std::string> notes;  // what is not drawn, or not as stored
};

// Throw Error if the question does not suit the file, or nothing can be drawn.
HeatmapAnswer heatmapOfArray(const HeatmapQuestion& question);
HeatmapAnswer heatmapOfDatabase(Session& session, const HeatmapQuestion& question);

}  // namespace tovrdb::tool
