// `diff`: what differs between two files.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addDiffCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
