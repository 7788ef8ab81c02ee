#include "client/reading/Mosaic.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/cells/CoveredCells.h"
#include "client/contents/AreaWords.h"
#include "client/session/LibraryError.h"
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

// The cells of a rectangle, without bytes yet.
CellBlock blankBlock(const Rect& rect, std::int32_t cellBytes) {
  return blockOf(rect, cellBytes, Bytes(static_cast<std::size_t>(columnsOf(rect) * rowsOf(rect) * cellBytes)));
}

unsigned char* placeIn(const CellBlock& block, const CellRun& run) {
  return block.bytes.get() + (block.at(run.left, run.y) - block.bytes.get());
}

class Composer {
 public:
  Composer(const Rect& rect, std::int32_t cellBytes) : cells_(blankBlock(rect, cellBytes)) {}

  // Only what no earlier block has covered.
  void add(const CellBlock& cells) {
    const auto part = common(cells.rect, cells_.rect);
    if (!part) return;
    covered_.add(
        *part, [&](const CellRun& run) { std::memcpy(placeIn(cells_, run), cells.at(run.left, run.y), bytesOf(run)); });
  }

  // Fills the cells that nothing covers, and counts them. Throws Error if there are some and `fill` is empty.
  std::int64_t fillOpen(const Bytes& fill) {
    std::int64_t open = 0;
    CellRun first;
    covered_.visitOpen(cells_.rect, [&](const CellRun& run) {
      if (open == 0) first = run;
      open += std::int64_t{run.right} - run.left + 1;
      if (!fill.empty()) fillRun(run, fill);
    });
    if (open > 0 && fill.empty()) {
      throw statusError(tovr::kNoMatchingArea, fmt::format("no area covers {} of {}, the first at {},{}",
                                                           counted(static_cast<std::size_t>(open), "cell"),
                                                           toText(cells_.rect), first.left, first.y))
          .suggest(Remedy::kFill);
    }
    return open;
  }

  CellBlock take() { return std::move(cells_); }

 private:
  std::size_t bytesOf(const CellRun& run) const {
    return static_cast<std::size_t>((std::int64_t{run.right} - run.left + 1) * cells_.cellBytes);
  }
  void fillRun(const CellRun& run, const Bytes& fill) {
    unsigned char* at = placeIn(cells_, run);
    for (std::int64_t x = run.left; x <= run.right; ++x) at = std::copy(fill.begin(), fill.end(), at);
  }

  CellBlock cells_;
  CoveredCells covered_;
};

// Whether the rectangle can be read across these areas.
bool readsAcross(const std::vector<StoredArea>& areas, const Rect& rect) {
  const auto fits = [&](const StoredArea& area) {
    return area.fault.empty() && area.cellBytes == areas.front().cellBytes;
  };
  if (!fitsBlock(rect, areas.front().cellBytes) || !std::all_of(areas.begin(), areas.end(), fits)) return false;
  return areasShowing(areas, rect).complete;
}

// The area that holds most of the rectangle.
const StoredArea& nearest(const std::vector<StoredArea>& areas, const Rect& rect) {
  const auto cells = [&](const StoredArea& area) {
    const Rect part = *common(area.rect, rect);
    return static_cast<double>(columnsOf(part)) * static_cast<double>(rowsOf(part));
  };
  return *std::max_element(areas.begin(), areas.end(),
                           [&](const StoredArea& one, const StoredArea& other) { return cells(one) < cells(other); });
}

}  // namespace

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
  CoveredCells covered;
  Rect all{};
  for (const StoredArea& area : areas) {
    const auto part = common(area.rect, rect);
    if (!part) continue;
    showing.overlapping = showing.overlapping || covered.meets(*part);
    if (covered.holds(*part)) continue;
    all = showing.areas.empty() ? *part : united(all, *part);
    showing.areas.push_back(area);
    covered.add(*part, [](const CellRun&) {});
  }
  showing.complete = !showing.areas.empty() && all == rect && covered.holds(rect);
  return showing;
}

Alternatives alternativesTo(const Rect& rect, const std::vector<StoredArea>& areas) {
  const std::vector<StoredArea> meeting = areasMeeting(areas, rect);
  if (meeting.empty()) return {"there are " + listText(areas), {}};
  std::vector<std::string> texts;
  for (const StoredArea& area : meeting) texts.push_back(fmt::format("{} ({})", area.id, toText(area.rect)));
  const std::string text = "areas that overlap it: " + shortList(texts);
  if (readsAcross(meeting, rect)) return {text, {Remedy::kReadAcross}};
  const StoredArea& area = nearest(meeting, rect);
  const std::string outside = outsideText(rect, area.rect, fmt::format("area {}", area.id));
  return {outside.empty() ? text : text + "; it reaches " + outside, {}};
}

Error withAlternatives(int status, const Rect& rect, const Alternatives& alternatives) {
  const std::string text = alternatives.text.empty() ? "" : "; " + alternatives.text;
  Error error = libraryError(status, fmt::format("asked for {}{}", toText(rect), text));
  for (const Remedy remedy : alternatives.remedies) error.suggest(remedy);
  return error;
}

Error noMatchingArea(const Rect& rect, const std::vector<StoredArea>& areas) {
  return withAlternatives(tovr::kNoMatchingArea, rect, alternativesTo(rect, areas));
}

// One that holds all of it alone is read as far as it is needed.
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
  Composer composer(rect, cellBytes);
  for (const StoredArea& area : showing.areas) composer.add(readBlock(session, area));
  const std::int64_t filled = composer.fillOpen(fill);
  return {composer.take(), std::move(showing.areas), showing.overlapping, filled};
}

}  // namespace tovrdb
