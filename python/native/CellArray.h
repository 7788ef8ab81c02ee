// Blocks of cells as NumPy arrays, and back, without a copy either way.
#pragma once

#include <pybind11/numpy.h>

#include "client/cells/CellBlock.h"

namespace tovrdb::python {

// rows x columns x values of the type. The array owns the block's bytes. Throws Error where a cell is not a whole
// number of such values.
pybind11::array arrayOf(const CellBlock& block, NumberType dtype);

// The array's bytes as the cells of `rect`. Throws Error for more than 2 GiB. REQUIRES: the array is in C order,
// begins with rows x columns, has at least one value a cell, and outlives the block.
CellBlock borrowedBlock(const pybind11::array& array, const Rect& rect);

}  // namespace tovrdb::python
