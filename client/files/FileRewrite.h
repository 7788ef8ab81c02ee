// A database file written anew beside itself, in the engine's own format, and put in its place when it is complete.
#pragma once

#include <string>

#include "client/session/Access.h"

namespace tovrdb {

// Copies everything in `file`, opened with `key`, into a new file with `newKey`, compares the two, flushes the new one,
// reads it back from the disk, and replaces the old one: at every moment the name leads to a complete file. No other
// program reads or writes the old one from before the copy until it is replaced (on Windows: until it is closed, right
// before that), so that no change is lost. A file in WAL mode stays in it, and is rewritten only if no other program
// has it open. `verb` is for the progress line. Throws Error, with the file as it was.
void rewriteFile(const Access& access, const std::string& file, const std::string& key, const std::string& newKey,
                 const std::string& verb);

}  // namespace tovrdb
