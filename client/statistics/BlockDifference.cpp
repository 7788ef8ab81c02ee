#include "client/statistics/BlockDifference.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "client/cells/CellNumbers.h"

namespace tovrdb {
namespace {

// Compares row by row, since most rows are equal.
class Comparison {
 public:
  Comparison(const Rect& rect, std::size_t cellBytes, const std::optional<NumberForm>& form,
             const std::optional<Tolerance>& tolerance)
      : rect_(rect), cellBytes_(cellBytes), form_(form), tolerance_(tolerance) {
    result_.cells = columnsOf(rect) * rowsOf(rect);
    if (form) {
      values_ = cellBytes / traitsOf(form->dtype).bytes;
      before_.resize(values_ * static_cast<std::size_t>(columnsOf(rect)));
      after_.resize(before_.size());
    }
  }

  void addRow(std::int32_t y, const unsigned char* before, const unsigned char* after) {
    const auto columns = static_cast<std::size_t>(columnsOf(rect_));
    if (std::memcmp(before, after, columns * cellBytes_) == 0) return;
    if (form_) {
      readNumbers(*form_, before, traitsOf(form_->dtype).bytes, before_.size(), before_.data());
      readNumbers(*form_, after, traitsOf(form_->dtype).bytes, after_.size(), after_.data());
    }
    for (std::size_t i = 0; i < columns; ++i) {
      const bool same = std::memcmp(before + i * cellBytes_, after + i * cellBytes_, cellBytes_) == 0;
      if (!same) addCell(i, {rect_.left + static_cast<std::int32_t>(i), y});
    }
  }

  const BlockDifference& result() const { return result_; }

 private:
  void addCell(std::size_t column, CellPair cell) {
    bool counts = !tolerance_;
    if (!form_ && result_.differing == 0) result_.at = cell;
    for (std::size_t k = 0; k < values_; ++k) {
      const double before = before_[column * values_ + k];
      const double after = after_[column * values_ + k];
      if (tolerance_ && !differ(before, after, *tolerance_)) continue;
      counts = true;
      const double apart = distance(before, after);
      if (found_ && apart <= result_.largest) continue;
      found_ = true;
      result_.at = cell;
      result_.component = k;
      result_.before = before;
      result_.after = after;
      result_.largest = apart;
    }
    if (counts) ++result_.differing;
  }

  Rect rect_;
  std::size_t cellBytes_;
  std::optional<NumberForm> form_;
  std::optional<Tolerance> tolerance_;
  std::size_t values_ = 0;
  std::vector<double> before_;
  std::vector<double> after_;
  bool found_ = false;  // `largest` holds a difference, which may be 0: the bits of -0.0 and 0.0 differ
  BlockDifference result_;
};

}  // namespace

double distance(double before, double after) {
  if (before == after || (std::isnan(before) && std::isnan(after))) return 0;  // also of infinities
  const double difference = std::abs(after - before);
  return std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
}

bool differ(double before, double after, const Tolerance& tolerance) {
  const double apart = distance(before, after);
  if (apart == 0) return false;
  if (!std::isfinite(apart)) return true;
  return apart > tolerance.absolute && apart > tolerance.relative * std::max(std::abs(before), std::abs(after));
}

BlockDifference compareBlocks(const CellBlock& before, const CellBlock& after, const std::optional<NumberForm>& form,
                              const std::optional<Tolerance>& tolerance) {
  const Rect& rect = before.rect;
  Comparison comparison(rect, static_cast<std::size_t>(before.cellBytes), form, tolerance);
  for (std::int64_t row = rect.top; row <= rect.bottom; ++row) {
    const auto y = static_cast<std::int32_t>(row);
    comparison.addRow(y, before.at(rect.left, y), after.at(rect.left, y));
  }
  return comparison.result();
}

}  // namespace tovrdb
