// `tovrdb encrypt` and `tovrdb decrypt`: text files through the encryption service.
#pragma once

#include <CLI/CLI.hpp>

#include "tool/system/Command.h"

namespace tovrtool {

void addCipherCommands(CLI::App& app, Command& chosen);

}  // namespace tovrtool
