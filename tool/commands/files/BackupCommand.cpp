#include "client/files/NewFiles.h"
#include "client/session/FileDiagnosis.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  std::string copy;
  bool force = false;
};

void backup(Context& context, const Options& options) {
  requireDatabaseFile(options.file);
  requireOtherThanLog(context, options.file);
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  backUp(context.options.access, options.file, key, options.copy,
         options.force ? Existing::kReplace : Existing::kRefuse);
  message("copied {} to {}; every page was checked and is on the disk", options.file, options.copy);
}

}  // namespace

void addBackupCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("backup", "Copy a database file, also while other programs work with it", &Options::file, backup);
  command.footer(
      R"(The copy is one state of the file, opens with the same key, and gets its name only when every page was checked
and is on the disk. tovrdb check tells whether its rows make sense, too.)");
  addFile(command, options.file);
  command.add_option("COPY", options.copy, "The copy, which must not exist yet")->required();
  command.add_flag("--force", options.force, "Replace the copy if it exists");
}

}  // namespace tovrdb::tool
