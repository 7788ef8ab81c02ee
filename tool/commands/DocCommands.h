// manual, completion: the program's command line for man and for the shells.
#pragma once

#include "tool/system/Command.h"

namespace CLI {
class App;
}

namespace tovrtool {

void addDocCommands(CLI::App& app, Command& chosen);

}  // namespace tovrtool
