#include "tool/report/BlockReduction.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace tovrdb::tool {

ReducedNumbers reduceBlocks(const std::vector<double>& numbers, std::int64_t columns, std::int64_t rows,
                            std::int64_t block) {
  ReducedNumbers reduced{(columns + block - 1) / block, (rows + block - 1) / block, {}, {}, {}};
  const auto size = static_cast<std::size_t>(reduced.columns * reduced.rows);
  const double none = std::numeric_limits<double>::quiet_NaN();
  reduced.least.assign(size, none);
  reduced.mean.assign(size, none);
  reduced.most.assign(size, none);
  std::vector<double> counts(size);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (!std::isfinite(numbers[i])) continue;
    const auto row = static_cast<std::int64_t>(i) / columns / block;
    const auto at = static_cast<std::size_t>(row * reduced.columns + static_cast<std::int64_t>(i) % columns / block);
    const double count = ++counts[at];
    if (count == 1) reduced.least[at] = reduced.most[at] = reduced.mean[at] = numbers[i];
    reduced.least[at] = std::min(reduced.least[at], numbers[i]);
    reduced.most[at] = std::max(reduced.most[at], numbers[i]);
    reduced.mean[at] += numbers[i] / count - reduced.mean[at] / count;  // never beyond its cells' range
  }
  return reduced;
}

}  // namespace tovrdb::tool
