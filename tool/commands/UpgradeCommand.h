// `tovrdb upgrade`: a file of SQLCipher 3.x becomes one of 4.x.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addUpgradeCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
