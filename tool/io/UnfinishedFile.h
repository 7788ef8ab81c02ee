// A file that somebody else writes (the engine, a service) under a temporary name, and that takes its real name when it
// is complete. What FileOutput is for our own bytes.
#pragma once

#include <string>

#include "tool/io/FileOutput.h"
#include "tool/system/Interrupt.h"

namespace tovrtool {

class UnfinishedFile {
 public:
  // A free name beside `finished`. `companion` is the suffix of what the writer keeps beside its file while it works.
  // Throws ToolError when `finished` exists and may not be replaced, and where its folder takes no new file.
  UnfinishedFile(const std::string& finished, Existing existing, const std::string& companion);
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  // Removes what was not moved.
  ~UnfinishedFile();

  const std::string& path() const { return path_; }

  // Flushes the file to the disk and gives it its name. Throws ToolError; what had the name is untouched then.
  // REQUIRES: the writer has closed it.
  void finish();

 private:
  std::string finished_;
  Existing existing_;
  std::string path_;
  std::string companion_;
  InterruptibleFile removed_;
  InterruptibleFile companionRemoved_;
  bool moved_ = false;
};

}  // namespace tovrtool
