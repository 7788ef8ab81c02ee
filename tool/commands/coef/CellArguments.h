// Which cells a command reads, and how their numbers are to be read: options of several commands.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "client/cells/NumberForm.h"
#include "client/reading/CellQuery.h"

namespace tovrdb::tool {

// --dtype, --scale and --unit.
void addForm(CLI::App& command, FormOptions& options, const std::string& dtypeDescription);

// --type, --screen, --rect, --area, --mosaic, --fill, and the form.
void addCells(CLI::App& command, CellQuery& query);

// On standard error, where several areas were read: that they overlap, that cells were filled.
void noteAnswer(const CellAnswer& answer, const FormOptions& options);

}  // namespace tovrdb::tool
