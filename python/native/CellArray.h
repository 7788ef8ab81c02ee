// Blocks of cells as NumPy arrays, and back, without a copy either way.
#pragma once

#include <pybind11/numpy.h>

#include "client/cells/CellBlock.h"

namespace tovrpython {

// rows x columns x values of the type. The array owns the block's bytes. Throws ToolError where a cell is not a whole
// number of such values.
pybind11::array arrayOf(const tovrtool::CellBlock& block, const tovrtool::Dtype& dtype);

// The array's bytes as the cells of `rect`. Throws ToolError for more than 2 GiB. REQUIRES: the array is in C order,
// begins with rows x columns, has at least one value a cell, and outlives the block.
tovrtool::CellBlock borrowedBlock(const pybind11::array& array, const tovrtool::Rect& rect);

}  // namespace tovrpython
