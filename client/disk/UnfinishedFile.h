// A file that somebody else writes (the engine, a service) in an UnfinishedPlace, and that takes its real name when it
// is complete. What FileOutput is for our own bytes.
#pragma once

#include <list>
#include <optional>
#include <string>

#include "client/base/Interrupt.h"
#include "client/disk/FileOutput.h"
#include "client/disk/UnfinishedPlace.h"

namespace tovrdb {

enum class Writer {
  kEngine,             // of databases
  kEncryptionService,  // keeps FILE.temp beside its file
};

class UnfinishedFile {
 public:
  // The file gets the permissions `mode`; without, those of the file that it replaces, or what its writer gave it.
  // Throws Error when `finished` is no name for a file of its own, when it exists and may not be replaced, and if
  // its folder takes no new file.
  UnfinishedFile(const std::string& finished, Existing existing, Writer writer,
                 std::optional<unsigned int> mode = std::nullopt);

  // Where the writer makes the file.
  const std::string& path() const { return place_.path(); }

  // Flushes the file to the disk and gives it its name; a database of that name is locked meanwhile, and kBusy if it
  // cannot be. Throws Error; what had the name is untouched then.
  // REQUIRES: the writer has closed it.
  void finish();

  // The two halves of it, for a caller that has the database of that name locked. An interrupt has no effect once the
  // file has its name.
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
