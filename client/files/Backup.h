// A copy of a database file, made while other programs work with it.
#pragma once

#include <string>

#include "client/disk/FileOutput.h"
#include "client/session/Access.h"

namespace tovrdb {

// Copies `file`, opened with `key`, to `copy`: one state of the file, byte by byte, which no other program can change
// meanwhile. The copy is flushed to the disk and gets its name only after every page of it was checked. Other programs
// go on reading; what they write waits until the file is read. Throws Error; what had the name is untouched then.
// REQUIRES: no Session is open on `file` in this program.
void backUp(const Access& access, const std::string& file, const std::string& key, const std::string& copy,
            Existing existing);

}  // namespace tovrdb
