// Open descriptors of the process: the standard streams, copies of them, and where they lead.
#pragma once

#include <string>

#include "client/disk/Platform.h"

namespace tovrdb {

constexpr int kStandardInput = 0;
constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

// A second descriptor of the same file as a stream of bytes; null if `descriptor` is closed. The copy is above the
// three standard ones, whichever of those are closed, and is not inherited by programs that this one starts (on
// Windows neither holds).
FileHandle duplicateAsStream(int descriptor);

// The open descriptor that a path stands for ("/dev/stdout", "/proc/self/fd/3"); negative for any other path.
int descriptorNamed(const std::string& path);

// Makes `descriptor` write to the null device, to the end of a file (created if need be), or where `target` writes to.
// False, with errno set: nothing was changed.
bool redirectToNull(int descriptor);
bool redirectToEndOf(const std::string& path, int descriptor);
bool redirectTo(int target, int descriptor);

}  // namespace tovrdb
