// A file that appears whole or not at all: written in an UnfinishedPlace, then moved to its name.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "client/disk/Platform.h"
#include "client/disk/UnfinishedPlace.h"

namespace tovrdb {

enum class Existing {
  kRefuse,  // the caller could choose kReplace
  kKeep,    // the caller has no such choice
  kReplace,
};

enum class Flushing {
  kAtCommit,
  kByFolder,  // the file is one of an UnfinishedFolder, which flushes all of them at once and is moved as a whole
};

// Where a link leads, else `path` itself: the file is to be replaced, not the link.
std::string followedLink(const std::string& path);

// Throws Error if `path` stands for standard output, or another descriptor.
void requireOwnName(const std::string& path);

[[noreturn]] void refuseExisting(const std::string& path, Existing existing);

// Throws Error if the name belongs to a database beside it, if there is a folder of that name, a file that may not
// be replaced, or one that nobody may write: somebody has protected it.
void requireReplaceable(const std::string& path, Existing existing);

// Gives the complete file `temporary` its name, on the same file system, and flushes the name to the disk. It gets the
// permissions `mode`; without, those of the file that it replaces. After an interrupt nothing is moved; one that comes
// later no longer counts. Throws Error; `path` is untouched then.
void moveIntoPlace(const std::string& temporary, const std::string& path, Existing existing,
                   std::optional<unsigned int> mode);

class FileOutput {
 public:
  // The file gets the permissions `mode`, whatever the file had that it replaces. What is not committed is removed; so
  // it is by an interrupt. Throws Error when `path` exists and may not be replaced, and when its folder takes no
  // new file.
  FileOutput(const std::string& path, Existing existing, unsigned int mode, Flushing flushing = Flushing::kAtCommit);

  // Throws Error if the disk has no room for so many bytes.
  void requireRoom(double bytes) const;

  // Throw Error when the disk does not take it; what `path` held before is untouched then.
  void write(const void* bytes, std::size_t size);
  void commit();

 private:
  void fail(const std::string& action) const;

  std::string path_;
  Existing existing_;
  unsigned int mode_;
  Flushing flushing_;
  bool direct_;  // a device, a pipe or an open descriptor: written to, there is nothing to replace
  std::optional<UnfinishedPlace> place_;
  FileHandle file_;
};

}  // namespace tovrdb
