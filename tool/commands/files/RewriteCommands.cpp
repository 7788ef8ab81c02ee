
#include "client/base/Error.h"
#include "client/checks/FileFacts.h"
#include "client/files/NewFiles.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

struct RekeyOptions {
  std::string file;
  std::string newKeyFile;
};

struct UpgradeOptions {
  std::string file;
};

void rekey(Context& context, const RekeyOptions& options) {
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  openDatabase(context, options.file, key).close();  // the old key is right: now ask for the new one
  const std::string newKey = readKey(options.newKeyFile, KeyUse::kCreate, kNewPageKey);
  rewriteFile(context.options.access, options.file, key, newKey, "rekey");
  message("the file has the new key; copies made before keep the old one");
}

void upgrade(Context& context, const UpgradeOptions& options) {
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  {
    Session session = openDatabase(context, options.file, key);
    const int made = engineGeneration(session);
    if (fileGeneration(session) == 4) return message("the file is one of SQLCipher 4.x already: nothing to do");
    if (made < 4) {
      throw Error(kRefused,
                  "this program runs on SQLCipher {}, which makes no newer files; run it where 4.x is installed",
                  generationText(made));
    }
  }
  rewriteFile(context.options.access, options.file, key, key, "upgrade");
  message("the file is now one of SQLCipher 4.x, which 3.x cannot open; the key is the same");
}

void addRekey(CommandGroup& program) {
  const auto [command, options] = program.add("rekey", "Give a database file a new key", &RekeyOptions::file, rekey);
  command.footer(
      R"(A whole new file is written beside the old one, compared with it, read back with the new key, and only then put
in its place: at every moment the name leads to a complete file, which no other program can use meanwhile.
Copies made before keep the old key; a host that has the file open must open it again.)");
  addFile(command, options.file);
  command
      .add_option("--new-key-file", options.newKeyFile,
                  "The new key is this file's first line [TOVRDB_NEW_KEY, else a prompt, twice]")
      ->type_name("FILE");
}

void addUpgrade(CommandGroup& program) {
  const auto [command, options] =
      program.add("upgrade", "Rewrite a file of SQLCipher 3.x as one of 4.x", &UpgradeOptions::file, upgrade);
  command.footer(
      R"(Takes an engine of 4.x (tovrdb info says which one is there). A whole new file is written beside the old one,
compared with it, read back, and only then put in its place. The library opens either; 3.x opens only its own.)");
  addFile(command, options.file);
}

}  // namespace

void addRewriteCommands(CommandGroup& program) {
  addRekey(program);
  addUpgrade(program);
}

}  // namespace tovrdb::tool
