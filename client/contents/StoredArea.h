// The coefficient areas of a file, as the tables hold them, and the cells of one area.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"
#include "client/session/Session.h"

namespace tovrdb {

// Where a block lies: an area's row and the screen that it refers to.
struct Placement {
  std::int64_t id = 0;
  std::int64_t screenId = 0;
  std::string screen;
  std::optional<Rect> screenRect;  // nothing if that screen does not exist
  std::int32_t type = 0;
  std::int64_t number = 0;
  Rect rect{};  // as stored, even if invalid; edges beyond 32 bits are clamped
  std::int64_t blockId = 0;
  std::string layers;
  std::string layerList;  // in hexadecimal digits
  std::string changed;    // when it was last written
};

// Adds what is stored beside the block's cells: zeros and empty texts if the block is missing or unreadable.
struct StoredArea : Placement {
  std::int32_t cellBytes = 0;
  std::int64_t storedBytes = 0;  // encrypted
  std::string version;
  std::string fault;  // why the cells cannot be read, if that is known without reading them
};

// In the order in which they were stored. Throw Error on failure; areas with a damaged block have a fault.
std::vector<Placement> placements(Session& session);
std::vector<StoredArea> storedAreas(Session& session);

// Adds what is stored beside the block of one area. Throws Error on failure.
StoredArea storedArea(Session& session, const Placement& placement);

// Nothing if there is no area of that id. Throws Error on failure.
std::optional<StoredArea> findArea(Session& session, std::int64_t id);

// What is wrong with an area's rectangle, its bytes per cell or the size of its block; empty if nothing is.
std::string faultOf(const StoredArea& area);

// The form of the numbers kept with an area; nothing if none is kept or the cells do not fit it.
std::optional<NumberForm> keptForm(const StoredArea& area);

// Throws Error if the area has a fault.
void requireReadable(const StoredArea& area);

// Throws Error if no cells can lie in a rectangle, which belongs to the area or screen `whose`.
void requireSound(const Rect& rect, const std::string& whose);

// Throws Error unless `bytes` is the size of a block of the rectangle.
void requireFilled(std::size_t bytes, const Rect& rect, std::int32_t cellBytes);

// The areas of a type, only of the named screen unless `screen` is empty; `all` are the file's areas, if they have been
// read already. Throws Error, which lists the stored types, if there are none.
std::vector<StoredArea> areasOfType(Session& session, std::int32_t type, const std::string& screen);
std::vector<StoredArea> areasOfType(Session& session, const std::vector<Placement>& all, std::int32_t type,
                                    const std::string& screen);

// Whether areas of different screens overlap, as they may if screens are found by name: each screen then has cells of
// its own.
bool screensShareCells(const std::vector<StoredArea>& areas);

// Throws Error if one of the areas was deleted or moved since it was looked up.
void requireUnmoved(Session& session, const std::vector<StoredArea>& areas);

// The whole block of an area, by its key. Throws Error.
CellBlock readBlock(Session& session, const StoredArea& area);

// The cells of a part of an area. Asks the library if it answers from this very area, since it decrypts only what is
// needed. Throws Error. REQUIRES: the area holds `rect`.
CellBlock readCells(Session& session, const StoredArea& area, const Rect& rect);

// "left, 0,0,63,31"
std::string toText(const Placement& area);

}  // namespace tovrdb
