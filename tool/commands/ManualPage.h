// The manual page of the program, made from its own command line.
#pragma once

#include <string>
#include <vector>

#include "tool/commands/CommandTree.h"

namespace tovrtool {

// Section 1, in the man macros of roff (man(7)).
std::string manualPage(const std::vector<CommandPage>& pages);

}  // namespace tovrtool
