// A folder that appears whole or not at all: filled in an UnfinishedPlace, then moved to its name.
#pragma once

#include <functional>
#include <string>

#include "client/base/Interrupt.h"
#include "client/disk/FileOutput.h"
#include "client/disk/UnfinishedPlace.h"

namespace tovrdb {

class UnfinishedFolder {
 public:
  // Tells which files a folder may hold that is to be replaced.
  using IsOurs = std::function<bool(const std::string& fileName)>;

  // Its files get the permissions `mode`; whoever may read those may enter it. Throws Error when `finished` is not
  // a folder, when it is not empty and may not be replaced, and when it holds anything that is not ours.
  UnfinishedFolder(const std::string& finished, Existing existing, unsigned int mode, const IsOurs& isOurs);

  // A new file in it. Throws Error after an interrupt, too.
  FileOutput file(const std::string& name) const;

  // Flushes it to the disk and gives it its name; what had the name is removed after that. Throws Error, also after
  // an interrupt; what had the name is whole then.
  void finish();

 private:
  void takeName();

  DeferredInterrupt interrupt_;  // a handler cannot remove folders
  std::string finished_;
  unsigned int mode_;
  IsOurs isOurs_;
  UnfinishedPlace place_;
};

}  // namespace tovrdb
