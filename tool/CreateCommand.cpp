#include "tool/CreateCommand.h"

#include <cerrno>
#include <filesystem>
#include <memory>

#include "tool/FileOutput.h"
#include "tool/Message.h"
#include "tool/Session.h"
#include "tool/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

struct Options {
  std::string file;
  int type = 0;
  std::string name;
  std::string structureVersion = "1";
  std::string softwareVersion = "0.1.0";
  std::string softwareType = "tovrdb";
  std::string databaseVersion = "1";
};

void refuseExisting() { throw ToolError(kFileProblem, "the file exists already and was not touched"); }

// The file under its temporary name: removed, with what the engine may have left beside it, unless it was moved.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::string& finished) : path_(temporaryNameBeside(finished)) {}
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  ~UnfinishedFile() {
    std::error_code error;
    if (!moved_) fs::remove(path_, error);
    fs::remove(path_ + "-journal", error);
  }
  const std::string& path() const { return path_; }
  void moveTo(const std::string& finished) {
    moved_ = moveWithoutReplacing(path_, finished);
    if (moved_) return;
    if (errno == EEXIST) refuseExisting();
    throw ToolError(kFileProblem, "the new file cannot be given its name: " + systemError());
  }

 private:
  std::string path_;
  bool moved_ = false;
};

void describe(Session& session, const Options& options) {
  auto info = session.host().makeRecord<tovr::DBInfo>();
  info->dbtype = options.type;
  info->dbname = options.name.empty() ? fs::path(options.file).stem().string() : options.name;
  info->datastructversion = options.structureVersion;
  info->softwareversion = options.softwareVersion;
  info->softwaretype = options.softwareType;
  info->dbversion = options.databaseVersion;
  session.require(session.manager().insertData(info.get()));
}

void create(Context& context, const Options& options) {
  std::error_code error;
  if (fs::exists(fs::symlink_status(options.file, error))) refuseExisting();
  const fs::path folder = fs::absolute(options.file).parent_path();
  if (!fs::is_directory(folder, error)) throw ToolError(kFileProblem, "there is no folder " + folder.string());

  UnfinishedFile unfinished(options.file);
  Session session = Session::openNew(context, unfinished.path());
  session.require(session.manager().createTables());
  describe(session, options);
  session.close();
  unfinished.moveTo(options.file);
  message("created " + options.file + ", database type " + std::to_string(options.type) + "; next: tovrdb screen add");
}

}  // namespace

void addCreateCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("create", "Make a new database file with its tables and its description");
  command->add_option("FILE", options->file, "The database file, which must not exist yet")->required();
  command->add_option("--type", options->type, "0: screens are found by rectangle; 1: by name")
      ->required()
      ->check(CLI::IsMember({0, 1}));
  command->add_option("--name", options->name, "The database's name [the file's]");
  command->add_option("--structure-version", options->structureVersion, "Version of the stored structures")
      ->capture_default_str();
  command->add_option("--software-version", options->softwareVersion, "Version of the software that writes the file")
      ->capture_default_str();
  command->add_option("--software-type", options->softwareType, "Kind of that software")->capture_default_str();
  command->add_option("--database-version", options->databaseVersion, "Version of the database layout")
      ->capture_default_str();
  command->callback([&chosen, options] {
    chosen = {"create " + options->file, [options](Context& context) { create(context, *options); }};
  });
}

}  // namespace tovrtool
