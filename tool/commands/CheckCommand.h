// `tovrdb check`: whether a database file is whole.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addCheckCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
