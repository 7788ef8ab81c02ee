// A database file written anew beside itself, in the engine's own format, and put in its place when it is complete.
#pragma once

#include <string>

#include "tool/database/Access.h"

namespace tovrtool {

// Copies everything in `file`, opened with `key`, into a new file with `newKey`, compares the two, reads the new one
// back from the disk, and replaces the old one: at every moment the name leads to a complete file. `verb` is for the
// progress line. Throws ToolError, with the file as it was.
void rewriteFile(const Access& access, const std::string& file, const std::string& key, const std::string& newKey,
                 const std::string& verb);

}  // namespace tovrtool
