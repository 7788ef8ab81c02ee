// `tovrdb measure`: luminance and chromaticity measurements.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addMeasureCommands(CLI::App& app, Command& chosen);

}  // namespace tovrtool
