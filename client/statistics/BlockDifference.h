// How two blocks of the same shape differ, cell by cell.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"

namespace tovrdb {

// Two numbers compare equal if their distance is at most `absolute`, or at most `relative` times the larger magnitude.
// NaNs compare equal to each other.
struct Tolerance {
  double absolute = 0;
  double relative = 0;
};

struct BlockDifference {
  std::int64_t cells = 0;
  std::int64_t differing = 0;
  CellPair at;  // the largest difference, or the first differing cell if numbers were not compared
  // Set only if numbers were compared.
  std::size_t component = 0;
  double before = 0;
  double after = 0;
  double largest = 0;
};

bool differ(double before, double after, const Tolerance& tolerance);

// The distance of two numbers: 0 if they are equal, infinite if they differ and one of them is not finite.
double distance(double before, double after);

// Compares bits unless a tolerance is given; numbers and tolerance are scaled. REQUIRES: both have the same rectangle
// and bytes per cell, a whole number of values of the form; a tolerance comes with a form.
BlockDifference compareBlocks(const CellBlock& before, const CellBlock& after, const std::optional<NumberForm>& form,
                              const std::optional<Tolerance>& tolerance);

}  // namespace tovrdb
