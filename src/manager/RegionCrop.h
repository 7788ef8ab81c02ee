// Cuts a rectangle out of a block of cells.
#pragma once

#include <memory>

#include "manager/DataRecords.h"
#include "manager/Rectangle.h"

namespace tovr {

// Bytes of a region: height * width * cellBytes, exact wherever it fits 32 bits, else a number that does not fit.
// Negative when one side is inverted by more than one cell, 0 when by exactly one.
std::int64_t regionBytes(const Rect& rect, std::int32_t cellBytes);

// Where the cells of a rectangle lie in a stored block: `rows` runs of `rowBytes` bytes, the first at `first`, each
// `stride` behind the one before.
struct CropPlan {
  std::int64_t bytes = 0;  // of the region; negative for one inverted by more than a cell on one side
  std::int64_t rows = 0;   // 0: the region gets no cells and is all zeros
  std::int64_t rowBytes = 0;
  std::int64_t first = 0;
  std::int64_t stride = 0;
};

// Plans the cut of `requested` out of the block of `stored`: `blockBytes` bytes, `cellBytes` a cell.
// 4109: `requested` is not inside `stored`. 4110: its bytes exceed the block's, or the block is too short for what
// would be read of it. Exact for every int32 rectangle: nothing wraps.
//
// Coordinates are compared as unsigned numbers once containment is established, so a stored rectangle that reaches
// from negative into non-negative coordinates yields no cells. Nor does an inverted request.
int planCrop(const Rect& stored, const Rect& requested, std::int32_t cellBytes, std::int32_t blockBytes,
             CropPlan& plan);

// A buffer for the region, all zeros where the plan copies no cells. Throws std::bad_alloc, for negative sizes too.
std::unique_ptr<unsigned char[]> allocateRegion(const CropPlan& plan);

// Plans, allocates and copies: the cells of `requested`, row-major. `out` is untouched on failure. No flow calls
// it: they decipher by the plan and never have the whole block. It is what they are tested against.
int cropRegion(const CoefBuffer& source, const Rect& stored, const Rect& requested,
               std::unique_ptr<unsigned char[]>& out);

}  // namespace tovr
