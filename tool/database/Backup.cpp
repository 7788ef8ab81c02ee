#include "tool/database/Backup.h"

#include <filesystem>
#include <vector>

#include "tool/database/DatabaseChecks.h"
#include "tool/database/Session.h"
#include "tool/io/Progress.h"
#include "tool/io/UnfinishedFile.h"
#include "tool/system/Paths.h"
#include "tool/system/Platform.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPiece = std::size_t{1} << 20;

void requireOther(const std::string& file, const std::string& copy) {
  std::error_code error;
  if (fs::equivalent(pathOf(file), pathOf(copy), error))
    throw ToolError(kUsage, "the copy would replace the file: give another name");
}

void copyBytes(const std::string& from, const std::string& to, Progress& progress) {
  const FileHandle input(std::fopen(from.c_str(), "rb"));
  if (input == nullptr) throw ToolError(kFileProblem, "cannot read {}: {}", from, systemError());
  const FileHandle output = createNew(to);
  if (output == nullptr) throw ToolError(kFileProblem, "cannot create the copy: {}", systemError());
  std::error_code error;
  fs::permissions(pathOf(to), fs::status(pathOf(from)).permissions(), error);
  std::vector<unsigned char> piece(kPiece);
  for (std::size_t count = kPiece; count == kPiece;) {
    count = std::fread(piece.data(), 1, kPiece, input.get());
    if (std::ferror(input.get()) != 0) throw ToolError(kFileProblem, "cannot read {}: {}", from, systemError());
    if (std::fwrite(piece.data(), 1, count, output.get()) != count) {
      throw ToolError(kFileProblem, "cannot write the copy: {}", systemError());
    }
    progress.advance(count);
  }
  if (std::fflush(output.get()) != 0) throw ToolError(kFileProblem, "cannot write the copy: {}", systemError());
}

// Closing the input ends all locks that this program has on the file, so nothing is done in it afterwards.
void copyOneState(const Access& access, const std::string& file, const std::string& key, const std::string& to,
                  Progress& progress) {
  Session session = Session::openExisting(access, file, key);
  session.beginReading();
  copyBytes(file, to, progress);
  session.close();
}

void requireWhole(const Access& access, const std::string& copy, const std::string& key) {
  Session session = Session::openExisting(access, copy, key);
  const auto faults = pageFaults(session);
  session.close();
  if (faults.empty()) return;
  throw ToolError(kRefused, "the copy is damaged, as the file may be, and was not kept: {}; `tovrdb check` tells more",
                  faults.front());
}

}  // namespace

void backUp(const Access& access, const std::string& file, const std::string& key, const std::string& copy,
            Existing existing) {
  requireDatabaseFile(file);
  requireOther(file, copy);
  UnfinishedFile unfinished(copy, existing, Writer::kEngine);
  const std::uint64_t size = fs::file_size(pathOf(file));
  Progress progress("backup", size * 2);
  copyOneState(access, file, key, unfinished.path(), progress);
  requireWhole(access, unfinished.path(), key);
  progress.advance(size);
  unfinished.finish();
}

}  // namespace tovrtool
