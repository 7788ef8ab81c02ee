// Round numbers for the axes and the colour bar of a picture.
#pragma once

#include <string>
#include <vector>

namespace tovrdb::tool {

struct Ticks {
  double step = 1;
  std::vector<double> values;  // ascending multiples of `step` in the range, both ends included
};

// At most `most` multiples of 1, 2 or 5 times a power of ten; none if the range holds none.
// REQUIRES: finite, low < high, most >= 1.
Ticks roundTicks(double low, double high, int most);

// The same for whole numbers such as cell indices: the step is at least 1, and low may equal high.
Ticks wholeTicks(double low, double high, int most);

// With as many decimals as a difference of `step` needs; in scientific notation if that is shorter.
std::string tickText(double value, double step);

struct TickLabel {
  double value = 0;
  std::string text;
};

// The labels of a colour bar: at round numbers, or at its two ends if fewer than two round numbers lie on it. No two
// labels are equal, however long their numbers. REQUIRES: as of roundTicks.
std::vector<TickLabel> barLabels(double low, double high, int most);

}  // namespace tovrdb::tool
