// The manual page of the program, made from its own command line.
#pragma once

#include <string>
#include <vector>

#include "tool/commands/CommandTree.h"

namespace tovrdb::tool {

// Section 1, with what it says about JSON, in the man macros of roff (man(7)).
std::string manualPage(const std::vector<CommandPage>& pages, const std::string& jsonManual);

}  // namespace tovrdb::tool
