// Whole files as bytes.
#pragma once

#include <string>
#include <vector>

namespace tovrdb {

// All bytes of the file at `path`; "-" is standard input. Throws Error when it cannot be read and when it holds
// more than any block of the library can (2 GiB).
std::vector<unsigned char> readWholeFile(const std::string& path);

}  // namespace tovrdb
