#include "tool/pictures/GatheredNumbers.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "tool/cells/Statistics.h"

namespace tovrtool {

bool GatheredNumbers::covered(const Rect& rect) const {
  return std::any_of(added_.begin(), added_.end(), [&](const Rect& earlier) { return holds(earlier, rect); });
}

bool GatheredNumbers::overlaps(const Rect& rect) const {
  return std::any_of(added_.begin(), added_.end(),
                     [&](const Rect& earlier) { return common(earlier, rect).has_value(); });
}

void GatheredNumbers::add(const Rect& rect, const ReadRow& readRow) {
  std::vector<double> numbers(static_cast<std::size_t>(columnsOf(rect)));
  for (std::int64_t y = rect.top; y <= rect.bottom; ++y) {
    readRow(static_cast<std::int32_t>(y), numbers.data());
    hideCovered(rect, static_cast<std::int32_t>(y), numbers);
    raster_.addRow(rect.left, static_cast<std::int32_t>(y), numbers);
    std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(values_),
                 [](double number) { return std::isfinite(number); });
  }
  added_.push_back(rect);
}

void GatheredNumbers::hideCovered(const Rect& rect, std::int32_t y, std::vector<double>& numbers) const {
  for (const Rect& earlier : added_) {
    const std::optional<Rect> hidden = common(earlier, {rect.left, y, rect.right, y});
    if (!hidden) continue;
    std::fill(numbers.begin() + (hidden->left - rect.left), numbers.begin() + (hidden->right - rect.left) + 1,
              std::numeric_limits<double>::quiet_NaN());
  }
}

NumberRange GatheredNumbers::extremes() const {
  if (values_.empty()) return {0, 0};
  const auto [least, most] = std::minmax_element(values_.begin(), values_.end());
  return {*least, *most};
}

NumberRange GatheredNumbers::percentileRange(const NumberRange& percents) const {
  NumberRange range = extremes();
  if (range.first < range.second) {
    std::vector<double> values = values_;
    const auto found = percentiles(values, {percents.first, percents.second});
    if (found[0] < found[1]) range = {found[0], found[1]};
  }
  if (range.first < range.second) return range;
  const double room = std::max(0.5, std::abs(range.first) * 1e-6);  // all are equal
  return {range.first - room, range.second + room};
}

NumberRange GatheredNumbers::balancedRange(double percent) const {
  std::vector<double> sizes;
  for (const double value : values_) {
    if (value != 0) sizes.push_back(std::abs(value));
  }
  const double bound = sizes.empty() ? 1.0 : percentiles(sizes, {percent}).front();
  return {-bound, bound};
}

}  // namespace tovrtool
