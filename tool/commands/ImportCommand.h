// `tovrdb import`: a new database file from such a folder.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addImportCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
