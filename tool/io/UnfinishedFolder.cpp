#include "tool/io/UnfinishedFolder.h"

#include <filesystem>

#include "tool/system/Paths.h"
#include "tool/system/Platform.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

void requireReplaceable(const std::string& path, Existing existing, const UnfinishedFolder::IsOurs& isOurs) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(pathOf(path), error);
  if (!fs::exists(status)) return;
  if (!fs::is_directory(status)) throw ToolError(kFileProblem, "{} exists already and is not a folder", path);
  for (const auto& entry : fs::directory_iterator(pathOf(path), error)) {
    if (existing == Existing::kRefuse) refuseExisting(path, existing);
    const std::string name = textOf(entry.path().filename());
    if (!entry.is_regular_file(error) || entry.is_symlink(error) || !isOurs(name)) {
      throw ToolError(kFileProblem, "{} is not replaced: it holds {}, which no export has written", path, name);
    }
  }
  if (error) throw ToolError(kFileProblem, "cannot read the folder {}: {}", path, error.message());
}

void require(const std::error_code& error, const std::string& action) {
  if (error) throw ToolError(kFileProblem, "cannot {}: {}", action, error.message());
}

std::string withoutSlash(const std::string& path) {
  const fs::path folder = pathOf(path).lexically_normal();
  return textOf(folder.has_filename() ? folder : folder.parent_path());
}

}  // namespace

UnfinishedFolder::UnfinishedFolder(const std::string& finished, Existing existing, const IsOurs& isOurs)
    : finished_(withoutSlash(finished)), isOurs_(isOurs), path_(temporaryNameBeside(finished_)) {
  requireReplaceable(finished_, existing, isOurs);
  std::error_code error;
  if (!fs::create_directory(pathOf(path_), error) || error) {
    throw ToolError(kFileProblem, "cannot make the folder {}: {}", finished_, error.message());
  }
}

UnfinishedFolder::~UnfinishedFolder() {
  std::error_code error;
  if (!path_.empty()) fs::remove_all(pathOf(path_), error);
}

std::string UnfinishedFolder::file(const std::string& name) const { return textOf(pathOf(path_) / pathOf(name)); }

void UnfinishedFolder::finish() {
  if (!flushWholeFolder(path_)) {
    throw ToolError(kFileProblem, "cannot write the new folder to the disk: {}", systemError());
  }
  takeName();
  flushFolder(textOf(fs::absolute(pathOf(finished_)).parent_path()));  // where it fails, it is there all the same
}

void UnfinishedFolder::takeName() {
  std::error_code error;
  const bool present = fs::exists(pathOf(finished_), error);
  if (!present) {
    fs::rename(pathOf(path_), pathOf(finished_), error);
    require(error, "give the new folder the name " + finished_);
    path_.clear();
    return;
  }
  requireReplaceable(finished_, Existing::kReplace, isOurs_);  // nothing has come into it meanwhile
  const std::string old = temporaryNameBeside(finished_ + ".replaced");
  fs::rename(pathOf(finished_), pathOf(old), error);
  require(error, "replace the folder " + finished_);
  fs::rename(pathOf(path_), pathOf(finished_), error);
  if (error) {
    std::error_code ignored;
    fs::rename(pathOf(old), pathOf(finished_), ignored);
    require(error, "replace the folder " + finished_);
  }
  path_.clear();
  fs::remove_all(pathOf(old), error);
}

}  // namespace tovrtool
