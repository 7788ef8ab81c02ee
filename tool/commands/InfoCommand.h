// `tovrdb info`: what a database file holds.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addInfoCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
