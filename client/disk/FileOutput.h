// A file that appears whole or not at all: written in an UnfinishedPlace, then moved to its name. FileOutput is for our
// own bytes, UnfinishedFile for a file that the engine or a service writes.
#pragma once

#include <cstddef>
#include <list>
#include <optional>
#include <string>

#include "client/base/Interrupt.h"
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

// The target of a link, else `path` itself: the file is to be replaced, not the link.
std::string followedLink(const std::string& path);

// Throws Error if `path` stands for standard output or another descriptor.
void requireOwnName(const std::string& path);

[[noreturn]] void refuseExisting(const std::string& path, Existing existing);

// Throws Error if the name belongs to a database beside it, if there is a folder of that name, a file that may not
// be replaced, or a file that nobody may write, which somebody has protected.
void requireReplaceable(const std::string& path, Existing existing);

class FileOutput {
 public:
  // The file gets the permissions `mode`, whatever those of a file that it replaces. A file that is not committed is
  // removed, also by an interrupt. Throws Error if `path` exists and may not be replaced, and if no file can be
  // created in its folder.
  FileOutput(const std::string& path, Existing existing, unsigned int mode, Flushing flushing = Flushing::kAtCommit);

  // Throws Error if the disk has no room for so many bytes.
  void requireRoom(double bytes) const;

  // Throw Error if the disk does not take it; what `path` held before is untouched then.
  void write(const void* bytes, std::size_t size);
  void commit();

 private:
  void fail(const std::string& action) const;

  std::string path_;
  Existing existing_;
  unsigned int mode_;
  Flushing flushing_;
  bool direct_;  // a device, a pipe or an open descriptor: written directly, since there is no file to replace
  std::optional<UnfinishedPlace> place_;
  FileHandle file_;
};

enum class Writer {
  kEngine,             // of databases
  kEncryptionService,  // keeps FILE.temp beside its file
};

class UnfinishedFile {
 public:
  // The file gets the permissions `mode`; without, those of the file that it replaces, or what its writer gave it.
  // Throws Error if `finished` is not the name of a file, if it exists and may not be replaced, and if no file can be
  // created in its folder.
  UnfinishedFile(const std::string& finished, Existing existing, Writer writer,
                 std::optional<unsigned int> mode = std::nullopt);

  // Where the writer creates the file.
  const std::string& path() const { return place_.path(); }

  // Flushes the file to the disk and gives it its name. A database of that name is locked meanwhile; kBusy if it cannot
  // be. Throws Error; the file that had the name is untouched then.
  // REQUIRES: the writer has closed the file.
  void finish();

  // The two halves of finish(), for a caller that has locked the database of that name. An interrupt has no effect once
  // the file has its name.
  void flush();
  void takeName();

 private:
  std::string finished_;
  Existing existing_;
  std::optional<unsigned int> mode_;
  Writer writer_;
  UnfinishedPlace place_;
  std::list<InterruptibleFile> companionsRemoved_;
};

}  // namespace tovrdb
