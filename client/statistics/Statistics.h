// Statistics of a set of numbers: summary, percentiles, histogram, outliers.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace tovrdb {

// The percentiles of a summary.
constexpr std::array<double, 7> kPercents = {1, 5, 25, 50, 75, 95, 99};

struct Summary {
  std::size_t count = 0;      // of finite numbers; if it is 0, so is all else but notFinite
  std::size_t notFinite = 0;  // infinities and NaNs
  double minimum = 0;
  double maximum = 0;
  double mean = 0;
  double deviation = 0;             // standard deviation of the population (divided by count)
  std::vector<double> percentiles;  // as many as kPercents
};

Summary summarize(const std::vector<double>& values);

// The percentiles of `values`, interpolated linearly between the two nearest values. Reorders `values`.
// REQUIRES: finite values, not empty; percents ascending, 0 to 100.
std::vector<double> percentiles(std::vector<double>& values, const std::vector<double>& percents);

struct Bin {
  double low = 0;
  double high = 0;
  std::size_t count = 0;
};

struct Histogram {
  std::size_t below = 0;
  std::vector<Bin> bins;  // low <= value < high; the last one includes its upper end
  std::size_t above = 0;
};

// One bin if low equals high. REQUIRES: low <= high, bins >= 1.
Histogram histogram(const std::vector<double>& values, double low, double high, std::size_t bins);

struct Outlier {
  std::size_t index = 0;  // in the values
  double value = 0;
  double distance = 0;  // from the median, in spreads; signed
};

// Found robustly: a few outliers change neither the median nor the spread.
struct Outliers {
  double median = 0;
  double spread = 0;  // estimates the standard deviation: 1.4826 x the median absolute deviation from the median, or
                      // 1.2533 x the mean absolute deviation if more than half the values are equal
  std::size_t count = 0;
  std::vector<Outlier> farthest;  // from the median, the farthest first; of equal distances the lower index first
};

// The finite values farther than `limit` spreads from the median, at most `most` of them in `farthest`; none if all are
// equal.
Outliers findOutliers(const std::vector<double>& values, double limit, std::size_t most);

}  // namespace tovrdb
