// The folder beside its target in which a new file or folder is written until it is complete.
#pragma once

#include <optional>
#include <string>

#include "client/base/Interrupt.h"
#include "client/disk/Platform.h"

namespace tovrdb {

// Only its owner can enter the folder, so that nobody else plants a link in it or reads an incomplete file. It is
// locked as long as this lives. Creating one removes leftovers of killed runs in the same folder, with a note for each.
class UnfinishedPlace {
 public:
  // Throws Error if no folder can be created beside `target`.
  explicit UnfinishedPlace(const std::string& target);
  UnfinishedPlace(const UnfinishedPlace&) = delete;
  UnfinishedPlace& operator=(const UnfinishedPlace&) = delete;
  // Removes the folder and what is left in it. So does an interrupt, if the folder holds nothing but path().
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
