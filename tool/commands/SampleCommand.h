// `tovrdb sample`: computed correction coefficients of a wall that does not exist.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addSampleCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
