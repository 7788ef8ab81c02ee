// Cuts a rectangle out of a block of cells.
#pragma once

#include <memory>

#include "manager/DataRecords.h"
#include "manager/Rectangle.h"

namespace tovr {

// Copies the cells of `requested` out of `source`, the block of `stored`, into a new buffer, row-major.
// 4109: `requested` is not inside `stored`. 4110: its bytes exceed the block's, or the block is too short for what
// would be read of it. `out` is untouched on failure. Throws std::bad_alloc; a region of negative size does so too.
//
// Coordinates are compared as unsigned numbers once containment is established, so a stored rectangle that reaches
// from negative into non-negative coordinates yields no cells: the buffer is then all zeros. So it is for an inverted
// request.
int cropRegion(const CoefBuffer& source, const Rect& stored, const Rect& requested,
               std::unique_ptr<unsigned char[]>& out);

// Bytes of a region: height * width * cellBytes, exact wherever it fits 32 bits, else a number that does not fit.
// Negative when one side is inverted by more than one cell, 0 when by exactly one.
std::int64_t regionBytes(const Rect& rect, std::int32_t cellBytes);

}  // namespace tovr
