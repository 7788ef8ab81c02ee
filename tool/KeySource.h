// Where the page key comes from: a file, the environment, or a prompt. Never the command line, which others can read.
#pragma once

#include <string>

namespace tovrtool {

enum class KeyUse { kOpen, kCreate };

// The first line of `keyFile` if that is not empty, else TOVRDB_KEY, else a prompt on a terminal (for kCreate twice).
// Throws ToolError without a source, when the file cannot be read, and for an empty key.
std::string readKey(const std::string& keyFile, KeyUse use);

}  // namespace tovrtool
