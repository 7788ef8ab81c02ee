// How two blocks of the same shape differ, cell by cell.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"

namespace tovrdb {

// Two numbers count as equal when they are no farther apart than `absolute`, or than `relative` times the larger of
// their sizes. Numbers that are none (NaN) are equal to one another only.
struct Tolerance {
  double absolute = 0;
  double relative = 0;
};

struct BlockDifference {
  std::int64_t cells = 0;
  std::int64_t differing = 0;
  CellPair at;  // the largest difference; the first differing cell where numbers were not compared
  // Of numbers only.
  std::size_t component = 0;
  double before = 0;
  double after = 0;
  double largest = 0;
};

bool differ(double before, double after, const Tolerance& tolerance);

// How far apart: 0 of equal numbers, infinite where one of them is not finite.
double distance(double before, double after);

// To the bit without `form` or `tolerance`; numbers and tolerance are scaled. REQUIRES: both have the same rectangle
// and bytes per cell, a whole number of values of the form; a tolerance comes with a form.
BlockDifference compareBlocks(const CellBlock& before, const CellBlock& after, const std::optional<NumberForm>& form,
                              const std::optional<Tolerance>& tolerance);

}  // namespace tovrdb
