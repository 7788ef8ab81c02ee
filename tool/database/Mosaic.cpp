#include "tool/database/Mosaic.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "storage/StatusCodes.h"
#include "tool/cells/CoveredCells.h"
#include "tool/database/LibraryError.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

std::int32_t commonWidth(const std::vector<StoredArea>& areas) {
  const auto other = std::find_if(areas.begin(), areas.end(),
                                  [&](const StoredArea& area) { return area.cellBytes != areas.front().cellBytes; });
  if (other == areas.end()) return areas.front().cellBytes;
  throw ToolError(kRefused, "area {} has {} bytes per cell and area {} has {}: read them apart, with --area",
                  areas.front().id, areas.front().cellBytes, other->id, other->cellBytes);
}

void requireSize(const Rect& rect, std::int32_t cellBytes) {
  if (fitsBlock(rect, cellBytes)) return;
  throw ToolError(kUsage, "the cells of {} are more than 2 GiB: read a part of them", toText(rect));
}

// The cells of a rectangle, without bytes yet.
CellBlock blankBlock(const Rect& rect, std::int32_t cellBytes) {
  return blockOf(rect, cellBytes, Bytes(static_cast<std::size_t>(columnsOf(rect) * rowsOf(rect) * cellBytes)));
}

unsigned char* placeIn(const CellBlock& block, const CellRun& run) {
  return block.bytes.get() + (block.at(run.left, run.y) - block.bytes.get());
}

class Composer {
 public:
  Composer(Session& session, const Rect& rect, std::int32_t cellBytes)
      : session_(session), mosaic_{blankBlock(rect, cellBytes), {}, false, 0} {}

  void add(const StoredArea& area) {
    const Rect part = *common(area.rect, mosaic_.cells.rect);
    mosaic_.overlapping = mosaic_.overlapping || covered_.meets(part);
    if (covered_.holds(part)) return;
    const CellBlock cells = readBlock(session_, area);
    covered_.add(part, [&](const CellRun& run) {
      std::memcpy(placeIn(mosaic_.cells, run), cells.at(run.left, run.y), bytesOf(run));
    });
    mosaic_.areas.push_back(area);
  }

  Mosaic finish(const Bytes& fill) {
    CellRun first;
    covered_.visitOpen(mosaic_.cells.rect, [&](const CellRun& run) {
      if (mosaic_.filled == 0) first = run;
      mosaic_.filled += std::int64_t{run.right} - run.left + 1;
      if (!fill.empty()) fillRun(run, fill);
    });
    if (mosaic_.filled > 0 && fill.empty()) {
      throw statusError(tovr::kNoMatchingArea,
                        fmt::format("no area covers {} cells of {}, the first at {},{}: give them a number with --fill",
                                    mosaic_.filled, toText(mosaic_.cells.rect), first.left, first.y));
    }
    return std::move(mosaic_);
  }

 private:
  std::size_t bytesOf(const CellRun& run) const {
    return static_cast<std::size_t>((std::int64_t{run.right} - run.left + 1) * mosaic_.cells.cellBytes);
  }
  void fillRun(const CellRun& run, const Bytes& fill) {
    unsigned char* at = placeIn(mosaic_.cells, run);
    for (std::int64_t x = run.left; x <= run.right; ++x) at = std::copy(fill.begin(), fill.end(), at);
  }

  Session& session_;
  Mosaic mosaic_;
  CoveredCells covered_;
};

}  // namespace

std::vector<StoredArea> areasMeeting(const std::vector<StoredArea>& areas, const Rect& rect) {
  std::vector<StoredArea> meeting;
  std::copy_if(areas.begin(), areas.end(), std::back_inserter(meeting),
               [&](const StoredArea& area) { return common(area.rect, rect).has_value(); });
  return meeting;
}

Mosaic readMosaic(Session& session, const std::vector<StoredArea>& areas, const Rect& rect, const Bytes& fill) {
  const std::vector<StoredArea> meeting = areasMeeting(areas, rect);
  if (meeting.empty() && fill.empty()) {
    throw statusError(tovr::kNoMatchingArea, fmt::format("no area has cells in {}", toText(rect)));
  }
  const std::int32_t cellBytes = meeting.empty() ? static_cast<std::int32_t>(fill.size()) : commonWidth(meeting);
  requireSize(rect, cellBytes);
  Composer composer(session, rect, cellBytes);
  for (const StoredArea& area : meeting) composer.add(area);
  return composer.finish(fill);
}

}  // namespace tovrtool
