#include "tool/commands/Command.h"

#include <filesystem>
#include <iostream>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/disk/Platform.h"
#include "client/session/FileDiagnosis.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/io/Terminal.h"

namespace tovrdb::tool {

Session openDatabase(const Context& context, const std::string& path) {
  requireDatabaseFile(path);
  requireOtherThanLog(context, path);
  return Session::openExisting(context.options.access, path, readKey(context.options.keyFile, KeyUse::kOpen));
}

Session openDatabase(const Context& context, const std::string& path, const std::string& key) {
  requireOtherThanLog(context, path);
  return Session::openExisting(context.options.access, path, key);
}

void requireOtherThanLog(const Context& context, const std::string& path) {
  std::error_code error;
  if (std::filesystem::equivalent(pathOf(path), pathOf(context.options.log), error)) {
    throw Error(kInvalid, "--log would write into the database: give another file");
  }
}

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

void addCoefCommands(CommandGroup& group) {
  CommandGroup coef = group.addGroup("coef", "Blocks of coefficient cells");
#define TOVRDB_ADD(add) add(coef);
  TOVRDB_COEF_COMMANDS(TOVRDB_ADD)
#undef TOVRDB_ADD
}

void addAllCommands(CommandGroup program) {
#define TOVRDB_ADD(add) add(program);
  TOVRDB_COMMANDS(TOVRDB_ADD)
#undef TOVRDB_ADD
}

}  // namespace tovrdb::tool
