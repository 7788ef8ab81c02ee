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
  // Whether a folder with a file of this name may be replaced.
  using IsOurs = std::function<bool(const std::string& fileName)>;

  // Its files get the permissions `mode`; whoever may read them may enter the folder. Throws Error if `finished` exists
  // and is not a folder, if it is not empty and may not be replaced, and if it holds anything that is not ours.
  UnfinishedFolder(const std::string& finished, Existing existing, unsigned int mode, const IsOurs& isOurs);

  // A new file in the folder. Throws Error, also after an interrupt.
  FileOutput file(const std::string& name) const;

  // Flushes the folder to the disk and gives it its name; an old folder of that name is removed after that. Throws
  // Error, also after an interrupt; the old folder is complete then.
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
