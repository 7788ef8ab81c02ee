#include "client/disk/UnfinishedFile.h"

#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/DatabaseFiles.h"
#include "client/disk/Paths.h"
#include "client/disk/Platform.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

// Where the file is to be.
std::string requirePlace(const std::string& finished, Existing existing) {
  requireOwnName(finished);
  std::string path = followedLink(finished);
  requireReplaceable(path, existing);
  std::error_code error;
  const fs::path folder = fs::absolute(pathOf(path), error).parent_path();
  if (!fs::is_directory(folder, error)) throw Error(kFileProblem, "there is no folder {}", textOf(folder));
  return path;
}

std::vector<std::string> companionsOf(const std::string& path, Writer writer) {
  if (writer == Writer::kEncryptionService) return {path + ".temp"};
  std::vector<std::string> companions;
  for (const char* suffix : kCompanionSuffixes) companions.push_back(path + suffix);
  return companions;
}

}  // namespace

UnfinishedFile::UnfinishedFile(const std::string& finished, Existing existing, Writer writer,
                               std::optional<unsigned int> mode)
    : finished_(requirePlace(finished, existing)),
      existing_(existing),
      mode_(mode),
      writer_(writer),
      place_(finished_) {
  for (const std::string& companion : companionsOf(path(), writer)) companionsRemoved_.emplace_back(companion);
}

void UnfinishedFile::flush() {
  const FileHandle file(std::fopen(path().c_str(), "r+b"));
  if (file == nullptr || !flushToDisk(file.get())) {
    throw systemFailure("cannot write the new file to the disk");
  }
}

void UnfinishedFile::finish() {
  flush();
  const DatabaseLock lock(writer_ == Writer::kEngine ? finished_ : "");
  takeName();
}

void UnfinishedFile::takeName() {
  if (writer_ == Writer::kEngine) removeIdleCompanions(finished_);
  moveIntoPlace(path(), finished_, existing_, mode_);
}

}  // namespace tovrdb
