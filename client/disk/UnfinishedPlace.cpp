#include "client/disk/UnfinishedPlace.h"

#include <fmt/core.h>

#include <cerrno>
#include <filesystem>
#include <vector>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/disk/Platform.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

// TARGET.unfinished-PROCESS[-NUMBER].tovrdb
constexpr char kMark[] = ".unfinished-";
constexpr char kEnd[] = ".tovrdb";

std::string nameFor(const std::string& target, int attempt) {
  const std::string number = attempt == 0 ? "" : fmt::format("-{}", attempt);
  return fmt::format("{}{}{}{}{}", target, kMark, processNumber(), number, kEnd);
}

bool isOurs(const std::string& name) {
  const std::size_t mark = name.rfind(kMark);
  if (mark == std::string::npos) return false;
  const std::size_t number = mark + sizeof kMark - 1;
  const std::size_t end = name.find_first_not_of("0123456789-", number);
  return end != number && end != std::string::npos && name.substr(end) == kEnd;
}

// No note about an empty folder: it may be one that another run has not locked yet, and creates again.
void removeLeftover(const std::string& folder) {
  std::error_code error;
  bool empty = false;
  {
    const FolderLock lock(folder, FolderLock::IfTaken::kGiveUp);
    if (!lock.held()) return;
    empty = fs::is_empty(pathOf(folder), error);
    fs::remove_all(pathOf(folder), error);
  }
  const bool removed = !fs::exists(pathOf(folder), error);
  if (removed && empty) return;
  listener().onNote(
      fmt::format("{} {}, which a killed run left unfinished", removed ? "removed" : "cannot remove", folder));
}

// `folder` is as the user named it; empty means the current one.
void removeLeftovers(const fs::path& folder) {
  std::vector<std::string> found;
  std::error_code error;
  fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const fs::path name = entry->path().filename();
    if (isOurs(textOf(name))) found.push_back(textOf(folder / name));
  }
  for (const std::string& leftover : found) removeLeftover(leftover);
}

}  // namespace

UnfinishedPlace::UnfinishedPlace(const std::string& target) {
  removeLeftovers(pathOf(target).parent_path());
  makeFolder(target);
  path_ = textOf(pathOf(folder_) / pathOf(target).filename());
  folderRemoved_.emplace(absolutePath(folder_));
  pathRemoved_.emplace(absolutePath(path_));
}

// Until the folder is locked another run may take it for a leftover and remove it.
void UnfinishedPlace::makeFolder(const std::string& target) {
  std::error_code error;
  for (int attempt = 0; !lock_ || !fs::is_directory(pathOf(folder_), error); ++attempt) {
    folder_ = nameFor(target, attempt);
    lock_.reset();
    if (createOwnFolder(folder_)) {
      lock_.emplace(folder_, FolderLock::IfTaken::kWait);
    } else if (errno != EEXIST) {
      throw systemFailure("cannot create " + target);
    }
  }
}

UnfinishedPlace::~UnfinishedPlace() {
  std::error_code error;
  fs::remove_all(pathOf(folder_), error);
  lock_.reset();
}

}  // namespace tovrdb
