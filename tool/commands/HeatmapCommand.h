// `heatmap`: a picture of one number of every cell.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addHeatmapCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
