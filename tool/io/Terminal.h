// The person at the terminal: typing, standard input, and pipes that end early.
#pragma once

#include <string>
#include <vector>

#include "client/disk/Descriptors.h"

namespace tovrdb::tool {

// A write to a closed pipe, or beyond the size that files may have, becomes an error that the writer sees, instead of
// ending the process.
void ignoreBrokenPipes();

bool isTerminal(int descriptor);

// A line typed on the terminal at standard input, without echo, after `prompt` on standard error. An interrupt
// restores the terminal and throws Error, and so does the end of the input. REQUIRES: isTerminal(kStandardInput).
std::string readWithoutEcho(const std::string& prompt);

// All bytes of the file at `path`, or of standard input if that is "-". Throws Error when they cannot be read, and for
// more than 2 GiB.
std::vector<unsigned char> readInput(const std::string& path);

}  // namespace tovrdb::tool
