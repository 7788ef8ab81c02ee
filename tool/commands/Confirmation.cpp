#include "tool/commands/Confirmation.h"

#include <iostream>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "tool/io/Message.h"
#include "tool/io/Terminal.h"

namespace tovrdb::tool {

void confirmDeletion(const std::vector<std::string>& what, bool forced) {
  if (forced) {
    for (const std::string& thing : what) message("deleting {}", thing);
    return;
  }
  if (!isTerminal(kStandardInput)) {
    throw Error(kInvalid, "this deletes {}: give --force to do it", shortList(what, "; "));
  }
  for (const std::string& thing : what) complain("this deletes " + thing);
  std::cerr << "Delete? [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "yes") throw Error(kRefused, "nothing was deleted");
}

void addForcedDeletion(CLI::App& command, bool& force) {
  command.add_flag("--force", force, "Do not ask; needed when there is no terminal");
}

}  // namespace tovrdb::tool
