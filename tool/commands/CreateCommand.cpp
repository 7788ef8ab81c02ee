#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/database/Session.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/io/UnfinishedFile.h"
#include "tool/system/Paths.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  int type = 0;
  std::string name;
  std::string structureVersion = "1";
  std::string softwareVersion = TOVRDB_VERSION;
  std::string softwareType = "tovrdb";
  std::string databaseVersion = "1";
};

void describe(Session& session, const Options& options) {
  auto info = session.host().makeRecord<tovr::DBInfo>();
  info->dbtype = options.type;
  info->dbname = options.name.empty() ? textOf(pathOf(options.file).stem()) : options.name;
  info->datastructversion = options.structureVersion;
  info->softwareversion = options.softwareVersion;
  info->softwaretype = options.softwareType;
  info->dbversion = options.databaseVersion;
  session.require(session.manager().insertData(info.get()));
}

void create(Context& context, const Options& options) {
  UnfinishedFile unfinished(options.file, Existing::kKeep, "-journal");
  Session session = Session::openNew(context.options.access.plugin, unfinished.path(),
                                     readKey(context.options.keyFile, KeyUse::kCreate));
  session.require(session.manager().createTables());
  describe(session, options);
  session.close();
  unfinished.finish();
  message("created {}, database type {}; next: tovrdb screen add", options.file, options.type);
}

}  // namespace

void addCreateCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("create", "Make a new database file with its tables and its description", &Options::file, create);
  command.add_option("FILE", options.file, "The database file, which must not exist yet")->required();
  command.add_option("--type", options.type, "0: screens are found by rectangle; 1: by name")
      ->required()
      ->check(CLI::IsMember({0, 1}));
  command.add_option("--name", options.name, "The database's name [the file's]");
  command.add_option("--structure-version", options.structureVersion, "Version of the stored structures")
      ->capture_default_str();
  command.add_option("--software-version", options.softwareVersion, "Version of the software that writes the file")
      ->capture_default_str();
  command.add_option("--software-type", options.softwareType, "Kind of that software")->capture_default_str();
  command.add_option("--database-version", options.databaseVersion, "Version of the database layout")
      ->capture_default_str();
}

}  // namespace tovrtool
