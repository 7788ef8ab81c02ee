#include "client/statistics/CabinetReport.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

namespace tovrdb {
namespace {

std::vector<double> numbersIn(const NumberGrid& numbers, const Rect& rect) {
  std::vector<double> found;
  for (std::int32_t y = rect.top; y <= rect.bottom; ++y) {
    const auto first = numbers.values.begin() + static_cast<std::ptrdiff_t>(numbers.index(rect.left, y));
    found.insert(found.end(), first, first + (rect.right - rect.left + 1));
  }
  return found;
}

// The first edge after `from` of a grid with an edge at `origin`.
std::int64_t nextEdge(std::int64_t from, std::int64_t origin, std::int64_t size) {
  const std::int64_t past = ((from - origin) % size + size) % size;
  return from + size - past;
}

std::vector<std::pair<std::int32_t, std::int32_t>> slices(std::int64_t first, std::int64_t last, std::int64_t origin,
                                                          std::int64_t size) {
  std::vector<std::pair<std::int32_t, std::int32_t>> found;
  while (first <= last) {
    const std::int64_t next = nextEdge(first, origin, size);
    found.emplace_back(static_cast<std::int32_t>(first), static_cast<std::int32_t>(std::min(next - 1, last)));
    first = next;
  }
  return found;
}

class Reporter {
 public:
  Reporter(const NumberGrid& numbers, const std::vector<Rect>& parts, const CabinetQuestion& question)
      : numbers_(numbers), rects_(parts), question_(question) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      byLeft_[parts[i].left].push_back(i);
      byTop_[parts[i].top].push_back(i);
    }
  }

  CabinetReport report() {
    for (std::size_t i = 0; i < rects_.size(); ++i) addPart(i);
    for (std::size_t i = 0; i < rects_.size(); ++i) addSeams(i);
    std::stable_sort(report_.worst.begin(), report_.worst.end(), [](const WorstCell& one, const WorstCell& other) {
      return std::abs(one.distance) > std::abs(other.distance);
    });
    report_.worst.resize(std::min(report_.worst.size(), question_.most));
    return std::move(report_);
  }

 private:
  void addPart(std::size_t part) {
    const std::vector<double> values = numbersIn(numbers_, rects_[part]);
    const NumberGrid grid{rects_[part], {}};
    const Outliers outliers = findOutliers(values, question_.limit, question_.most);
    PartFigures figures{rects_[part], summarize(values), {}, outliers.median, outliers.count};
    for (const double end : question_.ends) {
      figures.atEnds.push_back(static_cast<std::size_t>(std::count(values.begin(), values.end(), end)));
    }
    for (const Outlier& outlier : outliers.farthest) {
      report_.worst.push_back({part, grid.cell(outlier.index), outlier.value, outlier.distance});
    }
    report_.parts.push_back(std::move(figures));
  }

  // The seams at the right and the lower edge of the part.
  void addSeams(std::size_t part) {
    const Rect& rect = rects_[part];
    for (const std::size_t other : startingAt(byLeft_, rect.right)) {
      const std::int32_t top = std::max(rect.top, rects_[other].top);
      const std::int32_t bottom = std::min(rect.bottom, rects_[other].bottom);
      addSeam(part, other, {rect.right, top, rect.right, bottom},
              {rects_[other].left, top, rects_[other].left, bottom});
    }
    for (const std::size_t other : startingAt(byTop_, rect.bottom)) {
      const std::int32_t left = std::max(rect.left, rects_[other].left);
      const std::int32_t right = std::min(rect.right, rects_[other].right);
      addSeam(part, other, {left, rect.bottom, right, rect.bottom},
              {left, rects_[other].top, right, rects_[other].top});
    }
  }

  void addSeam(std::size_t first, std::size_t second, const Rect& firstLine, const Rect& secondLine) {
    if (firstLine.left > firstLine.right || firstLine.top > firstLine.bottom) return;
    const Summary before = summarize(numbersIn(numbers_, firstLine));
    const Summary after = summarize(numbersIn(numbers_, secondLine));
    if (before.count == 0 || after.count == 0) return;
    report_.seams.push_back({first, second, secondLine, after.mean - before.mean});
  }

  using Starts = std::map<std::int64_t, std::vector<std::size_t>>;

  static const std::vector<std::size_t>& startingAt(const Starts& starts, std::int64_t end) {
    static const std::vector<std::size_t> kNone;
    const auto found = starts.find(end + 1);
    return found == starts.end() ? kNone : found->second;
  }

  const NumberGrid& numbers_;
  const std::vector<Rect>& rects_;
  const CabinetQuestion& question_;
  Starts byLeft_;
  Starts byTop_;
  CabinetReport report_;
};

}  // namespace

std::size_t NumberGrid::index(std::int32_t x, std::int32_t y) const {
  const auto columns = static_cast<std::size_t>(columnsOf(rect));
  return static_cast<std::size_t>(y - rect.top) * columns + static_cast<std::size_t>(x - rect.left);
}

CellPair NumberGrid::cell(std::size_t index) const {
  const auto columns = static_cast<std::size_t>(columnsOf(rect));
  return {rect.left + static_cast<std::int32_t>(index % columns),
          rect.top + static_cast<std::int32_t>(index / columns)};
}

std::vector<Rect> cabinetsIn(const Rect& rect, const CellPair& origin, const CellPair& size) {
  std::vector<Rect> cabinets;
  const auto columns = slices(rect.left, rect.right, origin.x, size.x);
  for (const auto& [top, bottom] : slices(rect.top, rect.bottom, origin.y, size.y)) {
    for (const auto& [left, right] : columns) cabinets.push_back({left, top, right, bottom});
  }
  return cabinets;
}

std::vector<std::size_t> steepestSeams(const std::vector<Seam>& seams, std::size_t most) {
  std::vector<std::size_t> order(seams.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t one, std::size_t other) {
    return std::abs(seams[one].difference) > std::abs(seams[other].difference);
  });
  order.resize(std::min(order.size(), most));
  return order;
}

CabinetReport reportCabinets(const NumberGrid& numbers, const std::vector<Rect>& parts,
                             const CabinetQuestion& question) {
  return Reporter(numbers, parts, question).report();
}

}  // namespace tovrdb
