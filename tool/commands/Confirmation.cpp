#include "tool/commands/Confirmation.h"

#include <iostream>

#include "client/base/Message.h"
#include "client/base/TextList.h"
#include "client/base/ToolError.h"
#include "client/disk/Platform.h"

namespace tovrtool {

void confirmDeletion(const std::vector<std::string>& what, bool forced) {
  if (forced) {
    for (const std::string& thing : what) message("deleting {}", thing);
    return;
  }
  if (!isTerminal(kStandardInput)) {
    throw ToolError(kUsage, "this deletes {}: give --force to do it", shortList(what, "; "));
  }
  for (const std::string& thing : what) complain("this deletes " + thing);
  std::cerr << "Delete? [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "yes") throw ToolError(kRefused, "nothing was deleted");
}

void addForcedDeletion(CLI::App& command, bool& force) {
  command.add_flag("--force", force, "Do not ask; needed when there is no terminal");
}

}  // namespace tovrtool
