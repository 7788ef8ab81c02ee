// `tovrdb create`: a new database file with its tables and its description.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addCreateCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
