#include <fmt/core.h>

#include "client/base/Text.h"
#include "client/disk/FileOutput.h"
#include "client/files/Exchange.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

struct ExportOptions {
  std::string file;
  std::string folder;
  std::optional<NumberType> dtype;
  bool force = false;
  unsigned int mode = kOwnerOnlyFile;
};

void exportAll(Context& context, const ExportOptions& options) {
  Session session = openDatabase(context, options.file);
  const ExportReport report = exportFolder(
      session, options.folder, options.force ? Existing::kReplace : Existing::kRefuse, options.mode, options.dtype);
  for (const std::string& object : report.leftOut) {
    message("note: the {} is none of the nine tables and is left out", object);
  }
  session.close();
  message("exported to {}: {} and {}", options.folder, kManifestName, counted(report.payloadFiles, "payload file"));
  if (report.faults.empty()) return;
  for (const std::string& fault : report.faults) message("left out: {}", fault);
  throw statusError(tovr::kCipherFailed, fmt::format("the file is damaged; the folder holds all but {}",
                                                     counted(report.faults.size(), "row")));
}

struct ImportOptions {
  std::string folder;
  std::string file;
  bool force = false;
};

void import(Context& context, const ImportOptions& options) {
  const Json manifest = readManifest(options.folder);
  UnfinishedFile unfinished(options.file, options.force ? Existing::kReplace : Existing::kRefuse, Writer::kEngine);
  Session session = Session::openNew(context.options.access.plugin, unfinished.path(),
                                     readKey(context.options.keyFile, KeyUse::kCreate));
  importFolder(session, options.folder, manifest);
  session.close();
  unfinished.finish();
  message("imported {} into {}; next: tovrdb check", options.folder, options.file);
}

void addExport(CommandGroup& program) {
  const auto [command, options] = program.add(
      "export", "Write the whole content as a folder of .npy blocks and a manifest", &ExportOptions::file, exportAll);
  command.footer(
      R"(The folder is NOT encrypted: whoever can read it reads everything, so only its owner can unless --mode is given.
`tovrdb import` makes a database file of it that is equal in every stored value.)");
  addFile(command, options.file);
  command.add_option("DIR", options.folder, "The folder to make")->required();
  addDtype(command, options.dtype,
           "Type of the numbers in a cell (uint16, float32, ...); for all blocks [as kept with each, else bytes]");
  command.add_flag("--force", options.force, "Replace the folder if it holds an export, and nothing else");
  addMode(command, options.mode, "Permissions of its files, and of the folder with matching x bits");
}

void addImport(CommandGroup& program) {
  const auto [command, options] = program.add(
      "import", "Make a new database file of a folder that tovrdb export has written", &ImportOptions::file, import);
  command.footer("Keys, times and the last keys issued are kept. The page key is the one given now.");
  command.add_option("DIR", options.folder, "The folder")->required();
  addFile(command, options.file);
  command.add_flag("--force", options.force, "Replace the database file if it exists, once the new one is complete");
}

}  // namespace

void addExportCommands(CommandGroup& program) {
  addExport(program);
  addImport(program);
}

}  // namespace tovrdb::tool
