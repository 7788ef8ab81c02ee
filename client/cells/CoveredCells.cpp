#include "client/cells/CoveredCells.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>

namespace tovrdb {
namespace {

// The first run that ends at `column` or beyond.
template <class Runs>
auto firstFrom(Runs& runs, std::int64_t column) {
  auto run = runs.upper_bound(static_cast<std::int32_t>(column));
  if (run != runs.begin() && std::prev(run)->second >= column) --run;
  return run;
}

// A multiset of column indices that counts those below a bound.
class ColumnCounts {
 public:
  explicit ColumnCounts(std::vector<std::int32_t> columns) : columns_(std::move(columns)) {
    std::sort(columns_.begin(), columns_.end());
    columns_.erase(std::unique(columns_.begin(), columns_.end()), columns_.end());
    tree_.resize(columns_.size() + 1);
  }

  void add(std::int32_t column, std::int64_t times) {
    for (std::size_t i = below(column) + 1; i < tree_.size(); i += i & (~i + 1)) tree_[i] += times;
  }
  std::int64_t countBelow(std::int64_t bound) const {
    std::int64_t sum = 0;
    for (std::size_t i = below(bound); i > 0; i &= i - 1) sum += tree_[i];
    return sum;
  }

 private:
  std::size_t below(std::int64_t bound) const {
    return static_cast<std::size_t>(std::lower_bound(columns_.begin(), columns_.end(), bound) - columns_.begin());
  }

  std::vector<std::int32_t> columns_;
  std::vector<std::int64_t> tree_;
};

std::vector<std::int32_t> edgesOf(const std::vector<Rect>& rects, std::int32_t Rect::*edge) {
  std::vector<std::int32_t> edges;
  for (const Rect& rect : rects) edges.push_back(rect.*edge);
  return edges;
}

class Sweep {
 public:
  Sweep(const std::vector<Rect>& rects, std::size_t mostNamed)
      : rects_(rects),
        mostNamed_(mostNamed),
        lefts_(edgesOf(rects, &Rect::left)),
        rights_(edgesOf(rects, &Rect::right)) {}

  Overlaps run() {
    // In every row, rectangles that ended in the row above are closed before those that begin here are opened.
    std::vector<std::tuple<std::int64_t, bool, std::size_t>> events;
    for (std::size_t i = 0; i < rects_.size(); ++i) {
      if (!isSound(rects_[i])) continue;
      events.emplace_back(rects_[i].top, true, i);
      events.emplace_back(std::int64_t{rects_[i].bottom} + 1, false, i);
    }
    std::sort(events.begin(), events.end());
    for (const auto& [row, opens, index] : events) {
      if (opens) meet(index);
      mark(index, opens);
    }
    return std::move(found_);
  }

 private:
  void mark(std::size_t index, bool opens) {
    lefts_.add(rects_[index].left, opens ? 1 : -1);
    rights_.add(rects_[index].right, opens ? 1 : -1);
    if (opens) {
      open_.insert(index);
    } else {
      open_.erase(index);
    }
  }

  void meet(std::size_t index) {
    const Rect& rect = rects_[index];
    // Those that do not begin to its right, less those that end to its left.
    const std::int64_t pairs = lefts_.countBelow(std::int64_t{rect.right} + 1) - rights_.countBelow(rect.left);
    found_.pairs += static_cast<std::uint64_t>(pairs);
    if (pairs > 0 && found_.named.size() < mostNamed_) name(index);
  }

  void name(std::size_t index) {
    for (const std::size_t other : open_) {
      if (found_.named.size() == mostNamed_) return;
      if (common(rects_[other], rects_[index]))
        found_.named.emplace_back(std::min(other, index), std::max(other, index));
    }
  }

  const std::vector<Rect>& rects_;
  std::size_t mostNamed_;
  ColumnCounts lefts_;
  ColumnCounts rights_;
  std::set<std::size_t> open_;
  Overlaps found_;
};

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

// One run replaces all runs that it meets or adjoins.
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

Overlaps overlapsAmong(const std::vector<Rect>& rects, std::size_t mostNamed) { return Sweep(rects, mostNamed).run(); }

}  // namespace tovrdb
