#include "tool/pictures/GatheredNumbers.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "client/statistics/Statistics.h"

namespace tovrdb::tool {
namespace {

NumberRange extremesOf(const std::vector<double>& values) {
  if (values.empty()) return {0, 0};
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  return {*least, *most};
}

}  // namespace

void GatheredNumbers::add(const CellRun& run, const std::vector<double>& numbers) {
  raster_.addRow(run.left, run.y, numbers);
  std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(values_),
               [](double number) { return std::isfinite(number); });
}

NumberRange GatheredNumbers::extremes() const { return extremesOf(values_); }

NumberRange percentileRange(std::vector<double> values, const NumberRange& percents) {
  NumberRange range = extremesOf(values);
  if (range.first < range.second) {
    const auto found = percentiles(values, {percents.first, percents.second});
    if (found[0] < found[1]) range = {found[0], found[1]};
  }
  if (range.first < range.second) return range;
  const double room = std::max(0.5, std::abs(range.first) * 1e-6);  // all are equal
  constexpr double kLargest = std::numeric_limits<double>::max();
  return {std::max(range.first - room, -kLargest), std::min(range.second + room, kLargest)};
}

NumberRange balancedRange(const std::vector<double>& values, double percent) {
  std::vector<double> sizes;
  for (const double value : values) {
    if (value != 0) sizes.push_back(std::abs(value));
  }
  const double bound = sizes.empty() ? 1.0 : percentiles(sizes, {percent}).front();
  return {-bound, bound};
}

}  // namespace tovrdb::tool
