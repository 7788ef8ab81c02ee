// Large grids of numbers made smaller: square blocks of cells become their minimum, mean and maximum.
#pragma once

#include <cstdint>
#include <vector>

namespace tovrdb::tool {

struct ReducedNumbers {
  std::int64_t columns = 0;  // of blocks
  std::int64_t rows = 0;
  std::vector<double> least;  // row after row; NaN where a block has no finite number
  std::vector<double> mean;
  std::vector<double> most;
};

// `block` cells a side; blocks at the right and the lower edge may be cut short.
// REQUIRES: columns x rows numbers, row after row; block >= 1.
ReducedNumbers reduceBlocks(const std::vector<double>& numbers, std::int64_t columns, std::int64_t rows,
                            std::int64_t block);

}  // namespace tovrdb::tool
