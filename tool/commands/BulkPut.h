// Storing many blocks in one go: all of them or none.
#pragma once

#include <string>

#include "tool/commands/Command.h"

namespace tovrtool {

struct BulkSource {
  std::string manifest;
  std::string folder;

  bool isGiven() const { return !manifest.empty() || !folder.empty(); }
};

// How the two are written, for the user.
constexpr char kBulkHelp[] =
    "Many blocks at once, all of them or none, in one transaction:\n"
    "  --manifest FILE  a JSON list of {\"file\": \"a.npy\", \"type\": 1, \"rect\": [L, T, R, B]} and, where wanted,\n"
    "                   \"screen\", \"area\" and \"version\"; files lie in the manifest's folder or below it\n"
    "  --folder DIR     its .npy files, named T<type>_<L>,<T>,<R>,<B>.npy, with <screen>_ in front in databases of\n"
    "                   type 1: left_T1_0,0,1919,1079.npy; other files are left alone";

// Throws ToolError that names the block at fault; nothing is stored then.
void putAll(Context& context, const std::string& file, const BulkSource& source);

}  // namespace tovrtool
