// One block of cells from several stored areas.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/cells/CoveredCells.h"
#include "client/contents/StoredArea.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// Receives the cells that one rectangle shows, row by row.
using VisitRun = std::function<void(const CellRun& run)>;

// Composes a rectangle from rectangles in the order of precedence: where they overlap, the first one shows, as in the
// library.
class Composition {
 public:
  explicit Composition(const Rect& rect) : rect_(rect) {}

  // Called with the part of an added rectangle that lies inside the composed one. An empty result leaves it out.
  using Open = std::function<VisitRun(const Rect& part)>;

  // Calls `open` unless the earlier rectangles hide `rect` or it lies outside; then its result for the cells that show.
  void add(const Rect& rect, const Open& open);

  const Rect& rect() const { return rect_; }
  bool overlapping() const { return overlapping_; }  // two of the rectangles have the same cell
  bool complete() const;                             // every cell shows some rectangle
  // Visits the cells that no rectangle covers.
  void visitUncovered(const VisitRun& visit) const { covered_.visitOpen(rect_, visit); }

 private:
  Rect rect_;
  CoveredCells covered_;
  std::optional<Rect> around_;  // all that was added
  bool overlapping_ = false;
};

// Composes `rect` from stored areas: calls `open` once for each that shows, then its result for the cells that show.
using OpenArea = std::function<VisitRun(const StoredArea& area, const Rect& part)>;
Composition composeAreas(const std::vector<StoredArea>& areas, const Rect& rect, const OpenArea& open);

// Copies the visited cells from one block into another. REQUIRES: both hold them, with as many bytes per cell.
VisitRun copyRuns(CellBlock from, CellBlock to);

// A block of zeros. Throws Error if its cells are more than a block may have.
CellBlock blankBlock(const Rect& rect, std::int32_t cellBytes);
void requireBlockSize(const Rect& rect, std::int32_t cellBytes);

// The areas that have cells in `rect`, in the order given.
std::vector<StoredArea> areasMeeting(const std::vector<StoredArea>& areas, const Rect& rect);

// Those of them that show in it: earlier areas hide the others. The work grows with the rows of `rect` that they cover.
struct ShowingAreas {
  std::vector<StoredArea> areas;
  bool overlapping = false;
  bool complete = false;  // they cover the rectangle
};
ShowingAreas areasShowing(const std::vector<StoredArea>& areas, const Rect& rect);

struct Mosaic {
  CellBlock cells;
  std::vector<StoredArea> areas;  // those that show, in the order in which they were stored
  bool overlapping = false;       // two areas have the same cell in the rectangle
  std::int64_t filled = 0;        // cells that no area covers
};

// Reads the cells of `rect`, each area at most once. `fill` is the stored form of one cell, for cells that no area
// covers; if it is empty they are refused. Throws Error: cells without an area, areas that show and have a fault or
// cells of another width, more than 2 GiB of cells. REQUIRES: the areas are in the order in which they were stored.
Mosaic readMosaic(Session& session, const std::vector<StoredArea>& areas, const Rect& rect, const Bytes& fill);

}  // namespace tovrdb
