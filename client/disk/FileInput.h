// Whole files as bytes, JSON in files, and names of files that somebody else has written down.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "client/base/Json.h"

namespace tovrdb {

// All bytes of the file at `path`. Throws Error when it cannot be read, and if it is larger than any block of the
// library can be (2 GiB).
std::vector<unsigned char> readWholeFile(const std::string& path);

// The same for an open stream; `name` is what messages call it.
std::vector<unsigned char> readStream(std::FILE* stream, const std::string& name);

// The JSON in the file at `path`. Throws Error, as parseJson does.
Json readJson(const std::string& path);

// The path of a file inside `folder`. Throws Error for a name that leads out of it: absolute, with "..", or through
// a link.
std::string pathInside(const std::string& folder, const std::string& name);

}  // namespace tovrdb
