// A file that somebody else writes (the engine, a service) in an UnfinishedPlace, and that takes its real name when it
// is complete. What FileOutput is for our own bytes.
#pragma once

#include <optional>
#include <string>

#include "tool/io/FileOutput.h"
#include "tool/io/UnfinishedPlace.h"
#include "tool/system/Interrupt.h"

namespace tovrtool {

class UnfinishedFile {
 public:
  // `companion` is the suffix of what the writer keeps beside its file while it works. The file gets the permissions
  // `mode`; without, those of the file that it replaces, or what its writer gave it. Throws ToolError when `finished`
  // exists and may not be replaced, and if its folder takes no new file.
  UnfinishedFile(const std::string& finished, Existing existing, const std::string& companion,
                 std::optional<unsigned int> mode = std::nullopt);
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  // Where the writer makes the file.
  const std::string& path() const { return place_.path(); }

  // Flushes the file to the disk and gives it its name. Throws ToolError; what had the name is untouched then.
  // REQUIRES: the writer has closed it.
  void finish();

 private:
  std::string finished_;
  Existing existing_;
  std::optional<unsigned int> mode_;
  UnfinishedPlace place_;
  InterruptibleFile companionRemoved_;
};

}  // namespace tovrtool
