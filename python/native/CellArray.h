// Converts between blocks of cells and NumPy arrays without copying.
#pragma once

#include <pybind11/numpy.h>

#include "client/cells/CellBlock.h"

namespace tovrdb::python {

// rows x columns x values of the type. The array shares the block's bytes. Throws Error if a cell is not a
// whole number of such values.
pybind11::array arrayOf(const CellBlock& block, NumberType dtype);

// A block of `rect` that borrows the array's bytes. Throws Error if they exceed 2 GiB. REQUIRES: the array is in C
// order, begins with rows x columns, has at least one value a cell, and outlives the block.
CellBlock borrowedBlock(const pybind11::array& array, const Rect& rect);

}  // namespace tovrdb::python
