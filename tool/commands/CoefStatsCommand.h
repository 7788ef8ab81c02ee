// `coef stats`: the numbers of a block.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

// REQUIRES: the group `coef` was added.
void addCoefStatsCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
