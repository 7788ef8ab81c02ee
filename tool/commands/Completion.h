// What the shells need to complete the program's command line, made from the command line itself.
#pragma once

#include <string>
#include <vector>

#include "tool/commands/CommandTree.h"

namespace tovrdb::tool {

std::string bashCompletion(const std::vector<CommandPage>& pages);
std::string zshCompletion(const std::vector<CommandPage>& pages);
std::string fishCompletion(const std::vector<CommandPage>& pages);

}  // namespace tovrdb::tool
