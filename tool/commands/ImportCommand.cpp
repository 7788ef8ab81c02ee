#include "tool/commands/ImportCommand.h"

#include <memory>

#include "tool/commands/Arguments.h"
#include "tool/database/FolderImport.h"
#include "tool/database/Session.h"
#include "tool/files/Message.h"
#include "tool/files/UnfinishedFile.h"

namespace tovrtool {
namespace {

struct Options {
  std::string folder;
  std::string file;
  bool force = false;
};

void import(Context& context, const Options& options) {
  const Json manifest = readManifest(options.folder);
  UnfinishedFile unfinished(options.file, options.force ? Existing::kReplace : Existing::kRefuse, "-journal");
  Session session = Session::openNew(context, unfinished.path());
  importFolder(context, session, options.folder, manifest);
  session.close();
  unfinished.finish();
  message("imported " + options.folder + " into " + options.file + "; next: tovrdb check");
}

}  // namespace

void addImportCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("import", "Make a new database file of a folder that tovrdb export has written");
  command->footer("Keys, times and the last keys issued are kept. The page key is the one given now.");
  command->add_option("DIR", options->folder, "The folder")->required();
  addFile(*command, options->file);
  command->add_flag("--force", options->force, "Replace the database file if it exists, once the new one is complete");
  command->callback([&chosen, options] {
    chosen = {"import " + options->file, [options](Context& context) { import(context, *options); }};
  });
}

}  // namespace tovrtool
