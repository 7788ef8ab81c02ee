// A folder that appears whole or not at all: filled under a temporary name, then moved into place.
#pragma once

#include <functional>
#include <string>

#include "tool/io/FileOutput.h"
#include "tool/system/Interrupt.h"

namespace tovrtool {

class UnfinishedFolder {
 public:
  // Tells which files a folder may hold that is to be replaced.
  using IsOurs = std::function<bool(const std::string& fileName)>;

  // Makes a temporary folder beside `finished`. Throws ToolError when `finished` is not a folder, when it is not empty
  // and may not be replaced, and when it holds anything that is not ours.
  UnfinishedFolder(const std::string& finished, Existing existing, const IsOurs& isOurs);
  UnfinishedFolder(const UnfinishedFolder&) = delete;
  UnfinishedFolder& operator=(const UnfinishedFolder&) = delete;
  // Removes what was not finished.
  ~UnfinishedFolder();

  // The path of a file in it, which is to be written Flushing::kByFolder.
  std::string file(const std::string& name) const;

  // Flushes it to the disk and gives it its name; what had the name is removed after that. Throws ToolError; what had
  // the name is whole then.
  void finish();

 private:
  void takeName();

  DeferredInterrupt interrupt_;  // a handler cannot remove folders
  std::string finished_;
  IsOurs isOurs_;
  std::string path_;
};

}  // namespace tovrtool
