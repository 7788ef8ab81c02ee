// Statistics of a wall part by part, and of the seams between parts. Parts are cabinets of one size, or any other
// rectangles.
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

// The rectangle divided along a grid of cabinets, one of which begins at `origin`; those at the edges may be partial.
// Row by row from the top left.
std::vector<Rect> cabinetsIn(const Rect& rect, const CellPair& origin, const CellPair& size);

struct PartFigures {
  Rect rect{};
  Summary summary;
  std::vector<std::size_t> atEnds;  // cells whose number is at each end of its type
  double median = 0;
  std::size_t outliers = 0;
};

// Two parts side by side, or one above the other. The difference is the mean of the second part's line of cells along
// the seam minus that of the first's, of finite numbers; there is no seam if a line has none.
struct Seam {
  std::size_t first = 0;
  std::size_t second = 0;
  Rect line{};  // the second's
  double difference = 0;
};

// An outlier of its part.
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
  double limit = 6;          // spreads beyond which a cell is an outlier
  std::size_t most = 20;     // of the worst cells
};

// The seams with the largest differences, at most `most`, as indices; the largest first.
std::vector<std::size_t> steepestSeams(const std::vector<Seam>& seams, std::size_t most);

// REQUIRES: the grid holds every part.
CabinetReport reportCabinets(const NumberGrid& numbers, const std::vector<Rect>& parts,
                             const CabinetQuestion& question);

}  // namespace tovrdb
