#include "tool/io/UnfinishedFile.h"

#include <filesystem>

#include "tool/system/Paths.h"
#include "tool/system/Platform.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

// The path itself.
std::string requirePlace(const std::string& path, Existing existing) {
  requireReplaceable(path, existing);
  std::error_code error;
  const fs::path folder = fs::absolute(pathOf(path), error).parent_path();
  if (!fs::is_directory(folder, error)) throw ToolError(kFileProblem, "there is no folder {}", textOf(folder));
  return path;
}

void flush(const std::string& path) {
  const FileHandle file(std::fopen(path.c_str(), "r+b"));
  if (file == nullptr || !flushToDisk(file.get())) {
    throw systemFailure("cannot write the new file to the disk");
  }
}

// The engine would play what another database left there back into the new file.
void requireAtRest(const std::string& path) {
  for (const char* suffix : {"-journal", "-wal"}) {
    std::error_code error;
    if (!fs::exists(pathOf(path + suffix), error)) continue;
    throw ToolError(
        kFileProblem,
        "{0}{1} exists: another program is using the database {0}, or was ended while it wrote. Close it, or "
        "open the file once, and try again",
        path, suffix);
  }
}

}  // namespace

UnfinishedFile::UnfinishedFile(const std::string& finished, Existing existing, const std::string& companion,
                               std::optional<unsigned int> mode)
    : finished_(requirePlace(followedLink(finished), existing)),
      existing_(existing),
      mode_(mode),
      place_(finished_),
      companionRemoved_(path() + companion) {}

void UnfinishedFile::finish() {
  flush(path());
  requireAtRest(finished_);
  moveIntoPlace(path(), finished_, existing_, mode_);
}

}  // namespace tovrtool
