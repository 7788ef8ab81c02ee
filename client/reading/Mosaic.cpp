#include "client/reading/Mosaic.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

// Throws Error for an area that cannot show beside the first.
void requireMatching(const StoredArea& area, const StoredArea& first) {
  requireReadable(area);
  if (area.cellBytes == first.cellBytes) return;
  throw Error(kRefused, "area {} has {} bytes per cell and area {} has {}", first.id, first.cellBytes, area.id,
              area.cellBytes)
      .suggest(Remedy::kReadApart);
}

std::size_t cellsOf(const CellRun& run) { return static_cast<std::size_t>(std::int64_t{run.right} - run.left + 1); }

// Fills the cells that no area covers, and counts them. Throws Error if there are some and `fill` is empty.
std::int64_t fillUncovered(const Composition& composition, const Bytes& fill, const CellBlock& cells) {
  std::int64_t open = 0;
  CellRun first;
  composition.visitUncovered([&](const CellRun& run) {
    if (open == 0) first = run;
    open += static_cast<std::int64_t>(cellsOf(run));
    if (fill.empty()) return;
    unsigned char* at = cells.bytes.get() + cells.offset(run.left, run.y);
    for (std::int64_t x = run.left; x <= run.right; ++x) at = std::copy(fill.begin(), fill.end(), at);
  });
  if (open > 0 && fill.empty()) {
    throw statusError(tovr::kNoMatchingArea, fmt::format("no area covers {} of {}, the first at {},{}",
                                                         counted(static_cast<std::size_t>(open), "cell"),
                                                         toText(composition.rect()), first.left, first.y))
        .suggest(Remedy::kFill);
  }
  return open;
}

}  // namespace

void Composition::add(const Rect& rect, const Open& open) {
  const auto part = common(rect, rect_);
  if (!part) return;
  overlapping_ = overlapping_ || covered_.meets(*part);
  if (covered_.holds(*part)) return;
  const VisitRun visit = open(*part);
  if (!visit) return;
  around_ = around_ ? united(*around_, *part) : *part;
  covered_.add(*part, visit);
}

bool Composition::complete() const { return around_ && *around_ == rect_ && covered_.holds(rect_); }

Composition composeAreas(const std::vector<StoredArea>& areas, const Rect& rect, const OpenArea& open) {
  Composition composition(rect);
  for (const StoredArea& area : areas) {
    composition.add(area.rect, [&](const Rect& part) { return open(area, part); });
  }
  return composition;
}

VisitRun copyRuns(CellBlock from, CellBlock to) {
  return [from = std::move(from), to = std::move(to)](const CellRun& run) {
    const std::size_t bytes = cellsOf(run) * static_cast<std::size_t>(from.cellBytes);
    std::memcpy(to.bytes.get() + to.offset(run.left, run.y), from.at(run.left, run.y), bytes);
  };
}

CellBlock blankBlock(const Rect& rect, std::int32_t cellBytes) {
  requireBlockSize(rect, cellBytes);
  return blockOf(rect, cellBytes, Bytes(static_cast<std::size_t>(columnsOf(rect) * rowsOf(rect) * cellBytes)));
}

void requireBlockSize(const Rect& rect, std::int32_t cellBytes) {
  if (fitsBlock(rect, cellBytes)) return;
  throw Error(kInvalid, "the cells of {} are more than 2 GiB: read a part of them", toText(rect));
}

std::vector<StoredArea> areasMeeting(const std::vector<StoredArea>& areas, const Rect& rect) {
  std::vector<StoredArea> meeting;
  std::copy_if(areas.begin(), areas.end(), std::back_inserter(meeting),
               [&](const StoredArea& area) { return common(area.rect, rect).has_value(); });
  return meeting;
}

ShowingAreas areasShowing(const std::vector<StoredArea>& areas, const Rect& rect) {
  ShowingAreas showing;
  const Composition composition = composeAreas(areas, rect, [&](const StoredArea& area, const Rect&) {
    showing.areas.push_back(area);
    return [](const CellRun&) {};
  });
  showing.overlapping = composition.overlapping();
  showing.complete = composition.complete();
  return showing;
}

// Only the needed part of an area that holds all of the rectangle is decrypted.
Mosaic readMosaic(Session& session, const std::vector<StoredArea>& areas, const Rect& rect, const Bytes& fill) {
  const std::vector<StoredArea> meeting = areasMeeting(areas, rect);
  if (meeting.empty() && fill.empty()) {
    throw statusError(tovr::kNoMatchingArea, fmt::format("no area has cells in {}", toText(rect)));
  }
  const std::int32_t cellBytes =
      meeting.empty() ? static_cast<std::int32_t>(fill.size()) : std::max(meeting.front().cellBytes, 1);
  requireBlockSize(rect, cellBytes);
  ShowingAreas showing = areasShowing(meeting, rect);
  for (const StoredArea& area : showing.areas) requireMatching(area, showing.areas.front());
  if (showing.areas.size() == 1 && showing.complete) {
    CellBlock cells = readCells(session, showing.areas.front(), rect);
    return {std::move(cells), std::move(showing.areas), showing.overlapping, 0};
  }
  CellBlock cells = blankBlock(rect, cellBytes);
  const Composition composition = composeAreas(showing.areas, rect, [&](const StoredArea& area, const Rect&) {
    return copyRuns(readBlock(session, area), cells);
  });
  const std::int64_t filled = fillUncovered(composition, fill, cells);
  return {std::move(cells), std::move(showing.areas), showing.overlapping, filled};
}

}  // namespace tovrdb
