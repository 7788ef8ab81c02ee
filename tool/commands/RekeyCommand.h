// `tovrdb rekey`: a new page key for a database file.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addRekeyCommand(CLI::App& app, Command& chosen);

}  // namespace tovrtool
