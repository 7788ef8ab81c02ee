#include "client/files/NewFiles.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  DatabaseDescription description;
};

void create(Context& context, const Options& options) {
  requireFree(options.file);  // before a key is asked for
  const std::string key = readKey(context.options.keyFile, KeyUse::kCreate);
  makeDatabase(context.options.access.plugin, options.file, key, options.description);
  message("created {}, database type {}; next: tovrdb screen add", options.file, options.description.type);
}

}  // namespace

void addCreateCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("create", "Make a new database file with its tables and its description", &Options::file, create);
  command.add_option("FILE", options.file, "The database file, which must not exist yet")->required();
  command.add_option("--type", options.description.type, "0: screens are found by rectangle; 1: by name")
      ->required()
      ->check(CLI::IsMember({0, 1}));
  command.add_option("--name", options.description.name, "The database's name [the file's]");
  command.add_option("--structure-version", options.description.structureVersion, "Version of the stored structures")
      ->capture_default_str();
  command
      .add_option("--software-version", options.description.softwareVersion,
                  "Version of the software that writes the file")
      ->capture_default_str();
  command.add_option("--software-type", options.description.softwareType, "Kind of that software")
      ->capture_default_str();
  command.add_option("--database-version", options.description.databaseVersion, "Version of the database layout")
      ->capture_default_str();
}

}  // namespace tovrdb::tool
