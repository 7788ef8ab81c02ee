#include "tool/commands/RekeyCommand.h"

#include <memory>

#include "tool/commands/Arguments.h"
#include "tool/database/FileRewrite.h"
#include "tool/database/Session.h"
#include "tool/files/KeySource.h"
#include "tool/files/Message.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  std::string newKeyFile;
};

void rekey(Context& context, const Options& options) {
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  Session::openExisting(context, options.file, key).close();  // the old key is right: now ask for the new one
  const std::string newKey = readKey(options.newKeyFile, KeyUse::kCreate, kNewPageKey);
  rewriteFile(context, options.file, key, newKey, "rekey");
}

}  // namespace

void addRekeyCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("rekey", "Give a database file a new key");
  command->footer(
      "A whole new file is written beside the old one, compared with it, read back with the new key, and only then "
      "put\n"
      "in its place: at every moment the name leads to a complete file. Copies made before keep the old key.");
  addFile(*command, options->file);
  command
      ->add_option("--new-key-file", options->newKeyFile,
                   "The new key is this file's first line [TOVRDB_NEW_KEY, else a prompt, twice]")
      ->type_name("FILE");
  command->callback([&chosen, options] {
    chosen = {"rekey " + options->file, [options](Context& context) {
                rekey(context, *options);
                message("the file has the new key; copies made before keep the old one");
              }};
  });
}

}  // namespace tovrtool
