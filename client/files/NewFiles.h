// Complete database files: new ones, copies, and files rewritten in place. Each gets its name only when it is complete.
#pragma once

#include <string>

#include "client/disk/FileOutput.h"
#include "client/session/Session.h"
#include "client/storing/Changes.h"

namespace tovrdb {

// Throws Error if no new file of that name can be made.
void requireFree(const std::string& file);

// Makes a database file with its tables and its description; an empty name becomes the file's. Throws Error, also if
// the name is taken.
void makeDatabase(const std::string& plugin, const std::string& file, const std::string& key,
                  const DatabaseDescription& description);

// Stores the tables and the description in an empty database. Throws Error.
void fillNew(Session& session, const DatabaseDescription& description);

// Copies `file`, opened with `key`, to `copy`: one state of the file, byte by byte. Other programs can read meanwhile;
// their writes wait until the file is read. The copy is flushed to the disk and gets its name only after every page of
// it was checked. Throws Error; a file that had the name is then unchanged.
// REQUIRES: no Session is open on `file` in this program.
void backUp(const Access& access, const std::string& file, const std::string& key, const std::string& copy,
            Existing existing);

// Copies everything in `file`, opened with `key`, into a new file with `newKey`, compares the two, flushes the new one,
// reads it back from the disk, and replaces the old one: the name leads to a complete file at every moment. No other
// program reads or writes the old file from before the copy until it is replaced (on Windows: until it is closed, right
// before that), so no change is lost. A file in WAL mode stays in it, and is rewritten only if no other program has it
// open. `verb` names the task to the listener. Throws Error, with the file as it was.
void rewriteFile(const Access& access, const std::string& file, const std::string& key, const std::string& newKey,
                 const std::string& verb);

}  // namespace tovrdb
