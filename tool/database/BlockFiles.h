// Many blocks to store at once, as a list or the names of their files say.
#pragma once

#include <string>
#include <vector>

#include "tool/database/BlockStore.h"

namespace tovrtool {

// The files of a manifest: a JSON list of {"file": NAME, "type": NUMBER, "rect": [L, T, R, B]} and, where wanted,
// "screen", "area" and "version"; files lie in the manifest's folder or below it. Throws ToolError, which names the
// block at fault.
std::vector<BlockFile> blocksOfManifest(const std::string& path);

// The .npy files of a folder, named [screen_]T<type>_L,T,R,B.npy, in the order of their names; other files are left
// alone. Throws ToolError for a .npy file of another name.
std::vector<BlockFile> blocksOfFolder(const std::string& folder);

// What can be told of the files' size; those that cannot be read count nothing.
std::uint64_t bytesOf(const std::vector<BlockFile>& files);

}  // namespace tovrtool
