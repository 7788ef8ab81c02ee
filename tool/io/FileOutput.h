// A file that appears whole or not at all: written under a temporary name in its folder, then moved into place.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "tool/system/Interrupt.h"
#include "tool/system/Platform.h"

namespace tovrtool {

enum class Existing {
  kRefuse,  // the command has --force, and it was not given
  kKeep,    // there is no --force
  kReplace,
};

enum class Flushing {
  kAtCommit,
  kByFolder,  // the file is one of an UnfinishedFolder, which flushes all of them at once
};

// A name for an unfinished file beside `path` that nothing else has.
std::string temporaryNameBeside(const std::string& path);

// Where a link leads, else `path` itself: the file is to be replaced, not the link.
std::string followedLink(const std::string& path);

[[noreturn]] void refuseExisting(const std::string& path, Existing existing);

// Throws ToolError where there is a folder of that name, a file that may not be replaced, or one that nobody may write:
// somebody has protected it.
void requireReplaceable(const std::string& path, Existing existing);

// Gives the complete file `temporary` its name, in the same folder, and flushes the name to the disk. Throws ToolError;
// `path` is untouched then.
void moveIntoPlace(const std::string& temporary, const std::string& path, Existing existing);

class FileOutput {
 public:
  // Throws ToolError when `path` exists and may not be replaced, and when its folder takes no new file.
  FileOutput(const std::string& path, Existing existing, Readers readers = Readers::kAsUsual,
             Flushing flushing = Flushing::kAtCommit);
  FileOutput(const FileOutput&) = delete;
  FileOutput& operator=(const FileOutput&) = delete;
  // Removes what was not committed; so does an interrupt.
  ~FileOutput();

  // Throws ToolError where the disk has no room for so many bytes.
  void requireRoom(double bytes) const;

  // Throw ToolError when the disk does not take it; what `path` held before is untouched then.
  void write(const void* bytes, std::size_t size);
  void commit();

 private:
  void fail(const std::string& action) const;

  std::string path_;
  Existing existing_;
  Flushing flushing_;
  bool direct_;            // a device, a pipe or an open descriptor: written to, there is nothing to replace
  std::string temporary_;  // empty: there is none
  std::optional<InterruptibleFile> removed_;
  FileHandle file_;
};

}  // namespace tovrtool
