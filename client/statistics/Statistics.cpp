#include "client/statistics/Statistics.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace tovrdb {
namespace {

// Of normally distributed values.
constexpr double kNormalMad = 1.4826;   // standard deviation / median absolute deviation
constexpr double kNormalMean = 1.2533;  // standard deviation / mean absolute deviation

bool finite(double value) { return std::isfinite(value); }

std::vector<double> finiteOf(const std::vector<double>& values) {
  std::vector<double> kept;
  kept.reserve(values.size());
  std::copy_if(values.begin(), values.end(), std::back_inserter(kept), finite);
  return kept;
}

double meanOf(const std::vector<double>& values) {
  double mean = 0;  // running, so that neither a sum nor a difference overflows
  double count = 0;
  for (const double value : values) {
    ++count;
    mean += value / count - mean / count;
  }
  return mean;
}

// Replaces infinities by the largest finite numbers.
double bounded(double number) {
  return std::clamp(number, -std::numeric_limits<double>::max(), std::numeric_limits<double>::max());
}

// Root mean square of the distances from the mean, computed in units of the largest distance so that squares do not
// overflow, and with halved values if a distance would.
double deviationOf(const std::vector<double>& values, double mean) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  const double share = std::isfinite(*most - *least) ? 1 : 0.5;
  const double farthest = std::max(*most * share - mean * share, mean * share - *least * share);
  if (!(farthest > 0)) return 0;
  double squares = 0;
  for (const double value : values) {
    const double distance = (value * share - mean * share) / farthest;
    squares += distance * distance;
  }
  return bounded(farthest * std::sqrt(squares / static_cast<double>(values.size())) / share);
}

double spreadOf(const std::vector<double>& values, double median) {
  std::vector<double> distances;
  distances.reserve(values.size());
  for (const double value : values) distances.push_back(bounded(std::abs(value - median)));
  const double mad = percentiles(distances, {50}).front();
  return bounded(mad > 0 ? kNormalMad * mad : kNormalMean * meanOf(distances));
}

}  // namespace

Summary summarize(const std::vector<double>& values) {
  std::vector<double> numbers = finiteOf(values);
  Summary summary;
  summary.count = numbers.size();
  summary.notFinite = values.size() - numbers.size();
  if (numbers.empty()) return summary;
  const auto [least, most] = std::minmax_element(numbers.begin(), numbers.end());
  summary.minimum = *least;
  summary.maximum = *most;
  summary.mean = meanOf(numbers);
  summary.deviation = deviationOf(numbers, summary.mean);
  summary.percentiles = percentiles(numbers, {kPercents.begin(), kPercents.end()});
  return summary;
}

std::vector<double> percentiles(std::vector<double>& values, const std::vector<double>& percents) {
  std::vector<double> found;
  auto sorted = values.begin();  // everything before it is in place
  for (const double percent : percents) {
    const double rank = percent / 100.0 * static_cast<double>(values.size() - 1);
    const auto below = values.begin() + static_cast<std::ptrdiff_t>(std::floor(rank));
    if (below >= sorted) {
      std::nth_element(sorted, below, values.end());
      sorted = below;
    }
    const double share = rank - std::floor(rank);
    const double next = share > 0 ? *std::min_element(below + 1, values.end()) : *below;
    found.push_back(*below * (1.0 - share) + next * share);
  }
  return found;
}

Histogram histogram(const std::vector<double>& values, double low, double high, std::size_t bins) {
  const std::size_t count = low < high ? bins : 1;
  const auto edge = [&](std::size_t i) {
    const double share = static_cast<double>(i) / static_cast<double>(count);
    return i == count ? high : low * (1.0 - share) + high * share;
  };
  Histogram result;
  for (std::size_t i = 0; i < count; ++i) result.bins.push_back({edge(i), edge(i + 1), 0});
  for (const double value : values) {
    if (!finite(value)) continue;
    if (value < low) {
      ++result.below;
    } else if (value > high) {
      ++result.above;
    } else {
      const auto beyond = std::upper_bound(result.bins.begin(), result.bins.end(), value,
                                           [](double number, const Bin& bin) { return number < bin.low; });
      ++std::prev(beyond)->count;
    }
  }
  return result;
}

Outliers findOutliers(const std::vector<double>& values, double limit, std::size_t most) {
  std::vector<double> numbers = finiteOf(values);
  Outliers result;
  if (numbers.empty()) return result;
  result.median = percentiles(numbers, {50}).front();
  result.spread = spreadOf(numbers, result.median);
  if (!(result.spread > 0)) return result;
  std::vector<Outlier> all;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!finite(values[i])) continue;
    const double distance = bounded(bounded(values[i] - result.median) / result.spread);
    if (std::abs(distance) > limit) all.push_back({i, values[i], distance});
  }
  result.count = all.size();
  const auto farther = [](const Outlier& one, const Outlier& other) {
    const double difference = std::abs(one.distance) - std::abs(other.distance);
    return difference > 0 || (difference == 0 && one.index < other.index);
  };
  const auto kept = static_cast<std::ptrdiff_t>(std::min(most, all.size()));
  std::partial_sort(all.begin(), all.begin() + kept, all.end(), farther);
  result.farthest.assign(all.begin(), all.begin() + kept);
  return result;
}

}  // namespace tovrdb
