// What a set of numbers looks like.
#pragma once

#include <cstddef>
#include <vector>

namespace tovrdb {

// The percents for which a summary gives the values.
extern const std::vector<double> kPercents;

struct Summary {
  std::size_t count = 0;   // finite numbers; all else is 0 when there are none
  std::size_t others = 0;  // infinite, or no numbers
  double least = 0;
  double most = 0;
  double mean = 0;
  double deviation = 0;  // standard deviation of these very numbers (divided by their count)
  std::vector<double> percentiles;
};

Summary summarize(const std::vector<double>& values);

// The values below which so many percent lie, linear between the two nearest. Reorders `values`.
// REQUIRES: finite values, not empty; percents ascending, 0 to 100.
std::vector<double> percentiles(std::vector<double>& values, const std::vector<double>& percents);

struct Bin {
  double low = 0;
  double high = 0;
  std::size_t count = 0;
};

struct Histogram {
  std::size_t below = 0;
  std::vector<Bin> bins;  // low <= value < high; the last one holds its upper end too
  std::size_t above = 0;
};

// One bin when low equals high. REQUIRES: low <= high, bins >= 1.
Histogram histogram(const std::vector<double>& values, double low, double high, std::size_t bins);

struct Outlier {
  std::size_t index = 0;  // in the values
  double value = 0;
  double distance = 0;  // from the median, in spreads; signed
};

// Robust: neither the median nor the spread follow a few wild values.
struct Outliers {
  double median = 0;
  double spread = 0;  // about a standard deviation: 1.4826 x the median absolute deviation from the median; where more
                      // than half the values are equal, 1.2533 x the mean absolute deviation
  std::size_t count = 0;
  std::vector<Outlier> strongest;  // the farthest first, of equal ones the earliest
};

// The finite values farther than `limit` spreads from the median; none when all are equal.
Outliers standOut(const std::vector<double>& values, double limit, std::size_t most);

}  // namespace tovrdb
