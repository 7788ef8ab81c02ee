// `tovrdb screen`: the screens of a database file.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addScreenCommands(CLI::App& app, Command& chosen);

}  // namespace tovrtool
