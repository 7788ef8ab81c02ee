// How many pairs of rectangles have cells in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "client/cells/Rect.h"

namespace tovrdb {

struct Overlaps {
  std::uint64_t pairs = 0;
  std::vector<std::pair<std::size_t, std::size_t>> named;  // some of them by index, the lower one first
};

// Counts every pair and names at most `mostNamed`, in the order in which a line that sweeps down meets them. Rectangles
// that hold no cells overlap nothing. Takes O(n log n) steps, and O(n) more for each pair that is named.
//
// When the sweep meets a rectangle, the open ones that end left of it or begin right of it are counted with two Fenwick
// trees (P. Fenwick: A New Data Structure for Cumulative Frequency Tables, 1994); all other open ones overlap it.
Overlaps overlapsAmong(const std::vector<Rect>& rects, std::size_t mostNamed);

}  // namespace tovrdb
