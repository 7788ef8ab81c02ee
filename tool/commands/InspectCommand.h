// `tovrdb inspect`: what the plug-in says about itself.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addInspectCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
