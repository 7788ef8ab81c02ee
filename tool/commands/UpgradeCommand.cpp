#include "tool/commands/UpgradeCommand.h"

#include <memory>
#include <string>

#include "tool/commands/Arguments.h"
#include "tool/database/FileGeneration.h"
#include "tool/database/FileRewrite.h"
#include "tool/database/Session.h"
#include "tool/files/KeySource.h"
#include "tool/files/Message.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

void upgrade(Context& context, const std::string& file) {
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  {
    Session session = Session::openExisting(context, file, key);
    const int made = engineGeneration(session);
    if (fileGeneration(session) == 4) return message("the file is one of SQLCipher 4.x already: nothing to do");
    if (made < 4) {
      throw ToolError(kRefused, "this program runs on SQLCipher " + generationText(made) +
                                    ", which makes no newer files; run it where 4.x is installed");
    }
  }
  rewriteFile(context, file, key, key, "upgrade");
  message("the file is now one of SQLCipher 4.x, which 3.x cannot open; the key is the same");
}

}  // namespace

void addUpgradeCommand(CLI::App& app, Command& chosen) {
  auto file = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand("upgrade", "Rewrite a file of SQLCipher 3.x as one of 4.x");
  command->footer(
      "Takes an engine of 4.x (tovrdb info says which one is there). A whole new file is written beside the old one,\n"
      "compared with it, read back, and only then put in its place. The library opens either; 3.x opens only its own.");
  addFile(*command, *file);
  command->callback([&chosen, file] {
    chosen = {"upgrade " + *file, [file](Context& context) { upgrade(context, *file); }};
  });
}

}  // namespace tovrtool
