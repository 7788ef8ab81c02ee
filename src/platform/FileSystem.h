// What the standard streams lack: a rename that never replaces. Paths are narrow bytes, passed on unchanged.
#pragma once

#include <string>

namespace tovr {

// Renames `from` to `to`; false, and nothing changed, where `to` exists (errno is EEXIST) or the rename fails
// otherwise.
bool renameWithoutReplacing(const std::string& from, const std::string& to);

}  // namespace tovr
