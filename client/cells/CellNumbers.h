// The bytes of cells as numbers.
#pragma once

#include <cstddef>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"

namespace tovrdb {

// `count` numbers of type `dtype`, each `stride` bytes after the one before it. Whole numbers beyond 2^53 are rounded.
void readNumbers(NumberType dtype, const unsigned char* first, std::size_t stride, std::size_t count, double* numbers);
// The same, scaled.
void readNumbers(const NumberForm& form, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers);

// The bytes of a cell of `values` times this number, as it is stored. Throws Error where the type cannot hold it.
std::vector<unsigned char> cellOf(NumberType dtype, std::size_t values, double number);

// Throws Error, which names the components that there are, unless cells have number `component`, from 0.
void requireComponent(std::int32_t cellBytes, NumberType dtype, std::size_t component);

// That number, scaled, of the cells of row `y` in the columns of `part`. REQUIRES: cells have it; the block holds
// `part` and `y`.
void readRow(const CellBlock& block, const NumberForm& form, std::size_t component, const Rect& part, std::int32_t y,
             double* numbers);

}  // namespace tovrdb
