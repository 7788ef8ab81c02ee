// What the standard streams lack: a rename that never replaces, and a file's identity. Paths are narrow bytes, passed
// on unchanged.
#pragma once

#include <string>

namespace tovr {

// Renames `from` to `to`; false, and nothing changed, if `to` exists (errno is EEXIST) or the rename fails otherwise.
bool renameWithoutReplacing(const std::string& from, const std::string& to);

// Whether both paths lead to one existing file, also through links.
bool isSameFile(const std::string& a, const std::string& b);

}  // namespace tovr
