// The bytes of cells as numbers: in memory, and as comma-separated text for a spreadsheet.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"

namespace tovrdb {

// `count` numbers of type `dtype`, each `stride` bytes after the one before it. Whole numbers beyond 2^53 are rounded.
void readNumbers(NumberType dtype, const unsigned char* first, std::size_t stride, std::size_t count, double* numbers);
// The same, scaled.
void readNumbers(const NumberForm& form, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers);

// The bytes of a cell of `values` numbers that all equal `number`, stored without scale. Throws Error if the type
// cannot hold it.
std::vector<unsigned char> cellOf(NumberType dtype, std::size_t values, double number);

// Throws Error, which names the range of components, unless cells have the component `component`, counted from 0.
void requireComponent(std::int32_t cellBytes, NumberType dtype, std::size_t component);

// That component, scaled, of the cells of row `y` in the columns of `part`. REQUIRES: cells have it; the block holds
// `part` and `y`.
void readRow(const CellBlock& block, const NumberForm& form, std::size_t component, const Rect& part, std::int32_t y,
             double* numbers);

// A heading, then a line per cell: its column and row on the screen, and its scaled values. Passes the text to `write`
// one row of cells at a time. Numbers are exact. Throws Error for 64-bit whole numbers, which a decimal number may not
// hold exactly, and for a cell that is not a whole number of values.
void writeCsv(const CellBlock& block, const NumberForm& form, const std::function<void(const std::string&)>& write);

}  // namespace tovrdb
