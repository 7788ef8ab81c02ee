#include "client/disk/UnfinishedFolder.h"

#include <fmt/core.h>

#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/DatabaseFiles.h"
#include "client/disk/Platform.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

void requireReplaceable(const std::string& path, Existing existing, const UnfinishedFolder::IsOurs& isOurs) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(pathOf(path), error);
  if (!fs::exists(status)) return;
  if (!fs::is_directory(status)) throw Error(kFileProblem, "{} exists already and is not a folder", path);
  for (const auto& entry : fs::directory_iterator(pathOf(path), error)) {
    if (existing == Existing::kRefuse) refuseExisting(path, existing);
    const std::string name = textOf(entry.path().filename());
    if (!entry.is_regular_file(error) || entry.is_symlink(error) || !isOurs(name)) {
      throw Error(kFileProblem, "{} is not replaced: it holds {}, which no export has written", path, name);
    }
  }
  if (error) throw Error(kFileProblem, "cannot read the folder {}: {}", path, error.message());
}

// The path itself, without a slash at its end.
std::string requirePlace(const std::string& path, Existing existing, const UnfinishedFolder::IsOurs& isOurs) {
  const fs::path folder = pathOf(path).lexically_normal();
  std::string name = textOf(folder.has_filename() ? folder : folder.parent_path());
  requireOwnName(path);
  requireNoCompanion(name);
  requireReplaceable(name, existing, isOurs);
  return name;
}

void require(const std::error_code& error, const std::string& action) {
  if (error) throw systemFailure("cannot " + action, error);
}

std::string freeNameBeside(const std::string& path) {
  std::string name = fmt::format("{}.replaced-{}", path, processNumber());
  std::error_code error;
  while (fs::exists(fs::symlink_status(pathOf(name), error))) name += "x";
  return name;
}

// Whoever may read the files may list the folder and enter it.
fs::perms folderPermissions(unsigned int mode) { return fs::perms{mode | ((mode & 0444U) >> 2U)}; }

}  // namespace

UnfinishedFolder::UnfinishedFolder(const std::string& finished, Existing existing, unsigned int mode,
                                   const IsOurs& isOurs)
    : finished_(requirePlace(finished, existing, isOurs)), mode_(mode), isOurs_(isOurs), place_(finished_) {
  if (createOwnFolder(place_.path())) return;
  throw systemFailure("cannot create the folder " + finished_);
}

FileOutput UnfinishedFolder::file(const std::string& name) const {
  interrupt_.check();
  return {textOf(pathOf(place_.path()) / pathOf(name)), Existing::kRefuse, mode_, Flushing::kByFolder};
}

void UnfinishedFolder::finish() {
  if (!flushWholeFolder(place_.path())) {
    throw systemFailure("cannot write the new folder to the disk");
  }
  std::error_code error;
  fs::permissions(pathOf(place_.path()), folderPermissions(mode_), error);
  interrupt_.check();
  takeName();
  noteCompletion();
  flushFolder(folderOf(finished_));  // if that fails, the folder has its name nevertheless
}

void UnfinishedFolder::takeName() {
  const fs::path name = pathOf(finished_);
  const fs::path complete = pathOf(place_.path());
  std::error_code error;
  if (!fs::exists(name, error)) {
    fs::rename(complete, name, error);
    return require(error, "give the new folder the name " + finished_);
  }
  requireReplaceable(finished_, Existing::kReplace, isOurs_);  // nobody has put anything into it meanwhile
  const fs::path old = pathOf(freeNameBeside(finished_));
  fs::rename(name, old, error);
  require(error, "replace the folder " + finished_);
  fs::rename(complete, name, error);
  std::error_code ignored;
  fs::rename(old, error ? name : complete, ignored);  // moves the old one back, or away with the place
  require(error, "replace the folder " + finished_);
}

}  // namespace tovrdb
