// One array of cells out of several stored areas.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/contents/StoredArea.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// Each cell is from the first stored area that has it, as in the library.
struct Mosaic {
  CellBlock cells;
  std::vector<StoredArea> areas;  // those that show, in the order in which they were stored
  bool overlapping = false;       // two areas have the same cells in the rectangle
  std::int64_t filled = 0;        // cells that no area covers
};

// Throws Error if the cells of the rectangle are more than a block may have.
void requireBlockSize(const Rect& rect, std::int32_t cellBytes);

// The areas that have cells in `rect`, in the order given.
std::vector<StoredArea> areasMeeting(const std::vector<StoredArea>& areas, const Rect& rect);

// Those of them that show in it: the cells of the others are hidden by earlier ones. The work grows with the rows of
// `rect` that they cover.
struct ShowingAreas {
  std::vector<StoredArea> areas;
  bool overlapping = false;
  bool complete = false;  // they cover the rectangle
};
ShowingAreas areasShowing(const std::vector<StoredArea>& areas, const Rect& rect);

// What there is instead of what was asked for.
struct Alternatives {
  std::string text;
  std::vector<Remedy> remedies;
};

// Why no single area holds the rectangle, and what helps: the areas that overlap it, and either that they can be read
// together or what it passes; else all areas.
Alternatives alternativesTo(const Rect& rect, const std::vector<StoredArea>& areas);

// The library's refusal of a rectangle, with what there is instead.
Error withAlternatives(int status, const Rect& rect, const Alternatives& alternatives);
Error noMatchingArea(const Rect& rect, const std::vector<StoredArea>& areas);

// The cells of `rect`, each area read at most once. `fill` is the stored form of one cell for what no area covers;
// empty if they are refused. Throws Error: cells without an area, areas that show and have a fault or cells
// of another width, more than 2 GiB of cells. REQUIRES: the areas are in the order in which they were stored.
Mosaic readMosaic(Session& session, const std::vector<StoredArea>& areas, const Rect& rect, const Bytes& fill);

}  // namespace tovrdb
