// `tovrdb export`: the whole content of a database file as a folder of arrays and one manifest.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addExportCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
