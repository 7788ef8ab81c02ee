// Cells as comma-separated text, for a spreadsheet.
#pragma once

#include <functional>
#include <string>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"

namespace tovrdb {

// A heading, then a line per cell: its column and row on the screen, and its values, scaled. Hands the text to `write`
// a row of cells at a time. Numbers are exact; whole numbers of 64 bits do not fit and throw Error, as does a cell
// that is not a whole number of values.
void writeCsv(const CellBlock& block, const NumberForm& form, const std::function<void(const std::string&)>& write);

}  // namespace tovrdb
