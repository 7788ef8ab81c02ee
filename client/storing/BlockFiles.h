// Many blocks to store at once, described by a manifest or by the names of their files.
#pragma once

#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/contents/AreaNames.h"
#include "client/storing/StorePlan.h"

namespace tovrdb {

struct BlockFile {
  std::string path;
  AreaName area;
  BlockText text;
};

// The files of the manifest `text`, read from `path`: a JSON list of {"file": NAME, "type": NUMBER, "rect": [L, T, R,
// B]} with, optionally, "screen", "area", "version", "scale" ("1/16384") and "unit". The files lie in the manifest's
// folder or below it. Throws Error, which names the block at fault.
std::vector<BlockFile> blocksOfManifest(const std::string& path, const std::vector<unsigned char>& text);

// The .npy files of a folder, named [screen_]T<type>_L,T,R,B.npy, in the order of their names; other files are
// ignored. Throws Error for a .npy file with another name.
std::vector<BlockFile> blocksOfFolder(const std::string& folder);

// The cells in a file. Throws Error, which names it, if they do not fill the rectangle.
CellBlock readBlock(const BlockFile& file);

// Reads each file. Throws Error, with every file at fault among its details.
std::vector<WantedBlock> wantedOf(const std::vector<BlockFile>& files);

}  // namespace tovrdb
