// The stored coefficient areas of a file, as the tables hold them, and their cells.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/session/Session.h"

namespace tovrdb {

// Where a block lies: a row of areas with the screen that it refers to.
struct Placement {
  std::int64_t id = 0;
  std::int64_t screenId = 0;
  std::string screen;
  std::optional<Rect> screenRect;  // nothing where there is no such screen
  std::int32_t type = 0;
  std::int64_t number = 0;
  Rect rect{};  // as stored, sound or not; edges beyond 32 bits are the nearest that have them
  std::int64_t blockId = 0;
  std::string layers;
  std::string layerList;  // in hexadecimal digits
  std::string changed;    // when it was written last
};

// The same with what is stored beside the block's cells; zeros and empty texts if the block is missing or unreadable.
struct StoredArea : Placement {
  std::int32_t cellBytes = 0;
  std::int64_t storedBytes = 0;  // enciphered
  std::string version;
  std::string fault;  // why the cells cannot be read, as far as it shows without reading them; empty if it does not
};

// In the order in which they were stored. Throw Error on failure; an area whose block is damaged has a fault.
std::vector<Placement> placements(Session& session);
std::vector<StoredArea> storedAreas(Session& session);

// One of them alone. Throws Error on failure.
StoredArea storedArea(Session& session, const Placement& placement);

// Nothing if there is no area of that id. Throws Error on failure.
std::optional<StoredArea> findArea(Session& session, std::int64_t id);

// What is wrong with an area by its rectangle, its cells' width and the size of its block; empty if nothing is.
std::string faultOf(const StoredArea& area);

// Throws Error if the area has a fault.
void requireReadable(const StoredArea& area);

// Throws Error for a rectangle, of an area or a screen, in which no cells can lie.
void requireSound(const Rect& rect, const std::string& whose);

// Throws Error if a stored block of so many bytes does not hold the cells of its area.
void requireFilled(std::size_t bytes, const Rect& rect, std::int32_t cellBytes);

// The areas of a type, of the named screen only unless `screen` is empty. Throws Error, which says what there is,
// when there are none.
std::vector<StoredArea> areasOfType(Session& session, std::int32_t type, const std::string& screen);

// The area from which the library answers when it is asked for the rectangle; nothing where it has no answer. `screen`
// counts in databases of type 1 only, as in the library.
std::optional<StoredArea> answeringArea(Session& session, std::int32_t type, const std::string& screen,
                                        const Rect& rect);

// Whether areas of different screens lie on one another, as they may where screens are found by name: each screen then
// has cells of its own.
bool screensShareCells(const std::vector<StoredArea>& areas);

// Throws Error where one of the areas, looked up some time ago, is not there any more, or lies elsewhere.
void requireUnmoved(Session& session, const std::vector<StoredArea>& areas);

// The whole block of an area, by its key. Throws Error.
CellBlock readBlock(Session& session, const StoredArea& area);

// The cells of a part of an area, by the library where it answers from this very one: that deciphers no more than it
// has to. Throws Error. REQUIRES: the area holds `rect`.
CellBlock readCells(Session& session, const StoredArea& area, const Rect& rect);

// The cells that the library answers `record` with, whose type, rectangle and screen say what is asked for. `require`
// gets the library's code and throws where that is a failure.
CellBlock queryCells(Session& session, tovr::CoefData& record, const std::function<void(int code)>& require);

// "left, 0,0,63,31"
std::string toText(const Placement& area);

}  // namespace tovrdb
