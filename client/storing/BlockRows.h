// The rows of blocks and of their areas, written value by value as the library writes them.
//
// The library's own insertData reads all screens and all areas before each block. Whoever stores ten thousand blocks
// has read them already. Every function throws Error on failure. REQUIRES: a transaction; only applyChanges() calls
// these.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/contents/AreaNames.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"

namespace tovrdb {

// Gives the cells when they are written, and is called once.
using CellSupply = std::function<CellBlock()>;

// What the rows of an area and its block are to hold.
struct BlockContent {
  AreaName place;
  std::int64_t screenId = 0;  // 0: of the screen of this name that the same plan adds before
  std::int32_t number = 0;
  std::string version;
  CellSupply cells;  // of the place's rectangle
};

// Returns the block's key.
std::int64_t addAreaRows(Session& session, std::int64_t screenId, const BlockContent& content);

// The area and its block keep their keys.
void rewriteAreaRows(Session& session, const StoredArea& area, const BlockContent& content);

// Has the library rewrite the area, which also decides the rectangle of its screen. Returns the block's key.
std::int64_t updateByLibrary(Session& session, const StoredArea& area, const BlockContent& content);

// With their blocks, except for those that other areas share.
void deleteAreaRows(Session& session, const std::vector<StoredArea>& areas);

struct Patch {
  Rect rect{};
  CellSupply cells;
};

// Puts the patches into the area's block, in their order. All else in its rows stays: area number, layers, text, cell
// width. Decrypts from the first changed row on and stores the block once. Throws Error if it is damaged.
// REQUIRES: the area holds every rectangle, and the cells have its width.
void patchArea(Session& session, const StoredArea& area, const std::vector<Patch>& patches);

}  // namespace tovrdb
