// The companions of a database file: the files that the engine keeps beside it while it works.
#pragma once

#include <array>
#include <string>

#include "client/disk/Platform.h"

namespace tovrdb {

constexpr char kJournalSuffix[] = "-journal";
constexpr char kWalSuffix[] = "-wal";
constexpr std::array<const char*, 3> kCompanionSuffixes = {kJournalSuffix, kWalSuffix, "-shm"};

// Throws Error if `path` has the name of a companion: the engine would replace it, delete it, or play it back.
void requireNoCompanion(const std::string& path);

// Deletes companions of `database` that a killed writer has left and that hold no change. Throws Error if one holds a
// change, which the engine would play back into a new file of that name.
// REQUIRES: no program is writing to the database.
void removeIdleCompanions(const std::string& database);

// Keeps other programs out of a database file, without its key, as long as this lives. It takes the engine's own locks,
// so no Session of this program may be open on the file.
class DatabaseLock {
 public:
  // Locks nothing if there is no file. Throws Error if another program reads or writes it.
  explicit DatabaseLock(const std::string& database);

 private:
  FileHandle file_;
};

}  // namespace tovrdb
