// The names that belong to a database file: what the engine keeps beside it while it works.
#pragma once

#include <array>
#include <string>

#include "client/disk/Platform.h"

namespace tovrdb {

constexpr std::array<const char*, 3> kCompanionSuffixes = {"-journal", "-wal", "-shm"};

// Throws Error if `path` has the name of such a file: the engine would replace it, delete it, or play it back.
void requireNoCompanion(const std::string& path);

// Deletes the companions of `database` that hold no change, as a killed writer leaves them. Throws Error if one
// holds a change, which the engine would play back into a new file of that name.
// REQUIRES: no program is writing to the database.
void removeIdleCompanions(const std::string& database);

// Keeps other programs out of a database file, without its key, until this ends. It takes the locks of the engine: no
// Session of this program may be open on the file.
class DatabaseLock {
 public:
  // Without a file there is nothing to lock. Throws Error if another program reads or writes it.
  explicit DatabaseLock(const std::string& database);

 private:
  FileHandle file_;
};

}  // namespace tovrdb
