// Many blocks to store at once, as a list or the names of their files say.
#pragma once

#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/contents/BlockPlace.h"
#include "client/storing/StorePlan.h"

namespace tovrdb {

struct BlockFile {
  std::string path;
  AreaName area;
  BlockText text;
};

// The files of the manifest `text`, read from `path`: a JSON list of {"file": NAME, "type": NUMBER, "rect": [L, T, R,
// B]} and, where wanted, "screen", "area", "version", "scale" ("1/16384") and "unit"; files lie in the manifest's
// folder or below it. Throws Error, which names the block at fault.
std::vector<BlockFile> blocksOfManifest(const std::string& path, const std::vector<unsigned char>& text);

// The .npy files of a folder, named [screen_]T<type>_L,T,R,B.npy, in the order of their names; other files are left
// alone. Throws Error for a .npy file of another name.
std::vector<BlockFile> blocksOfFolder(const std::string& folder);

// The cells in a file. Throws Error, which names it, where they are not those of the rectangle.
CellBlock readBlock(const BlockFile& file);

// Each file is looked at. Throws Error, with every file at fault among its details.
std::vector<WantedBlock> wantedOf(const std::vector<BlockFile>& files);

}  // namespace tovrdb
