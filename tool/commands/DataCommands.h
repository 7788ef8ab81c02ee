// `tovrdb data`: generic data, one blob per data type.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addDataCommands(CLI::App& app, Command& chosen);

}  // namespace tovrtool
