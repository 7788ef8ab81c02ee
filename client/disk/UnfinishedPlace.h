// Where something is written until it is complete: a folder beside its target.
#pragma once

#include <optional>
#include <string>

#include "client/base/Interrupt.h"
#include "client/disk/Platform.h"

namespace tovrdb {

// A folder that only its owner can enter, so that nobody else plants a link in it or reads what is half done. It is
// locked as long as this lives. Making one removes those in the same folder whose writer was killed, and tells which.
class UnfinishedPlace {
 public:
  // Throws Error if the folder of `target` takes no new folder.
  explicit UnfinishedPlace(const std::string& target);
  UnfinishedPlace(const UnfinishedPlace&) = delete;
  UnfinishedPlace& operator=(const UnfinishedPlace&) = delete;
  // Removes the folder and what is left in it. An interrupt removes the folder, too, unless it holds more than path().
  ~UnfinishedPlace();

  // The path of the new file or folder, which has the target's name but does not exist yet.
  const std::string& path() const { return path_; }

 private:
  void makeFolder(const std::string& target);

  std::string folder_;
  std::optional<FolderLock> lock_;
  std::string path_;
  std::optional<InterruptibleFile> folderRemoved_;
  std::optional<InterruptibleFile> pathRemoved_;
};

}  // namespace tovrdb
