#include "client/cells/CoveredCells.h"

#include <algorithm>
#include <iterator>

namespace tovrdb {
namespace {

// The first run that ends at `column` or beyond.
template <class Runs>
auto firstFrom(Runs& runs, std::int64_t column) {
  auto run = runs.upper_bound(static_cast<std::int32_t>(column));
  if (run != runs.begin() && std::prev(run)->second >= column) --run;
  return run;
}

}  // namespace

bool CoveredCells::holds(const Rect& rect) const {
  for (std::int64_t y = rect.top; y <= rect.bottom; ++y) {
    const auto row = rows_.find(static_cast<std::int32_t>(y));
    if (row == rows_.end()) return false;
    const auto run = firstFrom(row->second, rect.left);
    if (run == row->second.end() || run->first > rect.left || run->second < rect.right) return false;
  }
  return true;
}

bool CoveredCells::meets(const Rect& rect) const {
  for (auto row = rows_.lower_bound(rect.top); row != rows_.end() && row->first <= rect.bottom; ++row) {
    const auto run = firstFrom(row->second, rect.left);
    if (run != row->second.end() && run->first <= rect.right) return true;
  }
  return false;
}

void CoveredCells::add(const Rect& rect, const std::function<void(const CellRun&)>& fresh) {
  for (std::int64_t y = rect.top; y <= rect.bottom; ++y) {
    const CellRun row{static_cast<std::int32_t>(y), rect.left, rect.right};
    Runs& runs = rows_[row.y];
    visitGaps(runs, row, fresh);
    cover(runs, row);
  }
}

void CoveredCells::visitOpen(const Rect& rect, const std::function<void(const CellRun&)>& visit) const {
  static const Runs kNone;
  for (std::int64_t y = rect.top; y <= rect.bottom; ++y) {
    const auto row = rows_.find(static_cast<std::int32_t>(y));
    visitGaps(row == rows_.end() ? kNone : row->second, {static_cast<std::int32_t>(y), rect.left, rect.right}, visit);
  }
}

void CoveredCells::visitGaps(const Runs& runs, const CellRun& row, const std::function<void(const CellRun&)>& visit) {
  std::int64_t next = row.left;
  for (auto run = firstFrom(runs, row.left); run != runs.end() && run->first <= row.right; ++run) {
    if (run->first > next) visit({row.y, static_cast<std::int32_t>(next), run->first - 1});
    next = std::int64_t{run->second} + 1;
  }
  if (next <= row.right) visit({row.y, static_cast<std::int32_t>(next), row.right});
}

// One run takes the place of all that it meets or adjoins.
void CoveredCells::cover(Runs& runs, const CellRun& row) {
  CellRun whole = row;
  auto run = firstFrom(runs, std::int64_t{row.left} - 1);
  while (run != runs.end() && run->first <= std::int64_t{row.right} + 1) {
    whole.left = std::min(whole.left, run->first);
    whole.right = std::max(whole.right, run->second);
    run = runs.erase(run);
  }
  runs.emplace(whole.left, whole.right);
}

}  // namespace tovrdb
