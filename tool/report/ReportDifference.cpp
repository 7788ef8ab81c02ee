#include "tool/report/ReportDifference.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "client/cells/CellNumbers.h"

namespace tovrdb::tool {
namespace {

bool sameCell(const CellBlock& before, const CellBlock& after, std::int32_t x, std::int32_t y) {
  return std::memcmp(before.at(x, y), after.at(x, y), static_cast<std::size_t>(before.cellBytes)) == 0;
}

// Around all cells in which a bit changed; empty if there are none.
std::optional<Rect> changedRect(const CellBlock& before, const CellBlock& after) {
  std::optional<Rect> around;
  for (std::int32_t y = before.rect.top; y <= before.rect.bottom; ++y) {
    for (std::int32_t x = before.rect.left; x <= before.rect.right; ++x) {
      if (sameCell(before, after, x, y)) continue;
      const Rect cell{x, y, x, y};
      around = around ? united(*around, cell) : cell;
    }
  }
  return around;
}

}  // namespace

FileChanges changesBetween(const Access& access, const FileAndKey& before, const FileAndKey& after,
                           const FormOptions& options) {
  FileChanges changes;
  FileComparison files(access, before, after);
  const auto visit = [&](const StoredArea& area, const CellBlock& early, const CellBlock& late,
                         const std::optional<NumberForm>& form) {
    if (early.bytes == nullptr) return;
    const auto rect = changedRect(early, late);
    if (rect) changes.cells.push_back({area.screen, area.type, form, cut(early, *rect), cut(late, *rect)});
  };
  changes.differences = files.compare({options, std::nullopt}, visit);
  return changes;
}

SetChanges::SetChanges(const CellSet& set, const std::vector<ChangedCells>& changes) : dtype_(set.form.dtype) {
  for (const ChangedCells& change : changes) {
    const bool same = change.screen == set.screen && change.type == set.type && change.form == set.form &&
                      change.before.cellBytes == set.cellBytes;
    if (!same || !holds(set.rect, change.before.rect)) continue;
    rect_ = changes_.empty() ? change.before.rect : united(rect_, change.before.rect);
    changes_.push_back(&change);
  }
}

std::int64_t SetChanges::count() const {
  std::int64_t cells = 0;
  for (const ChangedCells* change : changes_) {
    const Rect& rect = change->before.rect;
    for (std::int32_t y = rect.top; y <= rect.bottom; ++y) {
      for (std::int32_t x = rect.left; x <= rect.right; ++x)
        cells += sameCell(change->before, change->after, x, y) ? 0 : 1;
    }
  }
  return cells;
}

template <class Visit>
void SetChanges::visit(std::size_t component, Visit visitCell) const {
  const NumberForm stored{dtype_, {}, {}};
  const NumberGrid place{rect_, {}};
  for (const ChangedCells* change : changes_) {
    const Rect& rect = change->before.rect;
    std::vector<double> early(static_cast<std::size_t>(columnsOf(rect))), late(early.size());
    for (std::int32_t y = rect.top; y <= rect.bottom; ++y) {
      readRow(change->before, stored, component, rect, y, early.data());
      readRow(change->after, stored, component, rect, y, late.data());
      for (std::size_t i = 0; i < early.size(); ++i) {
        visitCell(place.index(rect.left, y) + i, early[i], late[i]);
      }
    }
  }
}

std::vector<double> SetChanges::differences(std::size_t component) const {
  std::vector<double> numbers(static_cast<std::size_t>(columnsOf(rect_) * rowsOf(rect_)));
  visit(component,
        [&](std::size_t at, double early, double late) { numbers[at] = differ(early, late, {}) ? late - early : 0; });
  return numbers;
}

std::vector<bool> SetChanges::changed(std::size_t component) const {
  std::vector<bool> cells(static_cast<std::size_t>(columnsOf(rect_) * rowsOf(rect_)));
  visit(component, [&](std::size_t at, double early, double late) { cells[at] = differ(early, late, {}); });
  return cells;
}

}  // namespace tovrdb::tool
