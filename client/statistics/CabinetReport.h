// The figures of a wall part by part, and where parts meet. Parts are cabinets of one size, or any other rectangles.
#pragma once

#include <cstddef>
#include <vector>

#include "client/cells/Rect.h"
#include "client/statistics/Statistics.h"

namespace tovrdb {

// One number of every cell of a rectangle, row-major.
struct NumberGrid {
  Rect rect{};
  std::vector<double> values;

  std::size_t index(std::int32_t x, std::int32_t y) const;
  CellPair cell(std::size_t index) const;
};

// The rectangle cut along a grid of cabinets, one of which begins at `origin`; those at the edges may be cut short. Row
// by row from the top left.
std::vector<Rect> cabinetsIn(const Rect& rect, const CellPair& origin, const CellPair& size);

struct PartFigures {
  Rect rect{};
  Summary summary;
  std::vector<std::size_t> atEnds;  // cells with the number of each end of the form
  double median = 0;
  std::size_t standOut = 0;
};

// Where two parts lie side by side, or one above the other: the mean of the second's line of cells along the seam, less
// that of the first's. Of finite numbers; lines without any have no seam.
struct Seam {
  std::size_t first = 0;
  std::size_t second = 0;
  Rect line{};  // the second's
  double difference = 0;
};

// A cell far from the median of its part.
struct WorstCell {
  std::size_t part = 0;
  CellPair cell;
  double value = 0;
  double distance = 0;  // in spreads of the part, signed
};

struct CabinetReport {
  std::vector<PartFigures> parts;
  std::vector<Seam> seams;       // in the order of the first parts
  std::vector<WorstCell> worst;  // the farthest first
};

struct CabinetQuestion {
  std::vector<double> ends;  // as endsOf gives them
  double limit = 6;          // spreads from which cells stand out
  std::size_t most = 20;     // of the worst cells
};

// REQUIRES: the grid holds every part.
CabinetReport reportCabinets(const NumberGrid& numbers, const std::vector<Rect>& parts,
                             const CabinetQuestion& question);

}  // namespace tovrdb
