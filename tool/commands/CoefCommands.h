// `tovrdb coef`: blocks of coefficient cells.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addCoefCommands(CLI::App& app, Command& chosen);

}  // namespace tovrtool
