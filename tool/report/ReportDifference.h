// What changed in the cells of a file since an older one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/checks/FileDifference.h"
#include "client/statistics/CabinetReport.h"
#include "tool/report/ReportCells.h"

namespace tovrdb::tool {

// The smallest part of a block that contains all changed cells, and the form of the block's numbers if it is known.
struct ChangedCells {
  std::string screen;
  std::int32_t type = 0;
  std::optional<NumberForm> form;
  CellBlock before;
  CellBlock after;
};

struct FileChanges {
  std::vector<Difference> differences;
  std::vector<ChangedCells> cells;
};

// `before` is the older file. Throws Error as FileComparison does.
FileChanges changesBetween(const Access& access, const FileAndKey& before, const FileAndKey& after,
                           const FormOptions& options);

// The changes in the cells of a set, in one grid.
class SetChanges {
 public:
  SetChanges(const CellSet& set, const std::vector<ChangedCells>& changes);

  bool any() const { return !changes_.empty(); }
  const Rect& rect() const { return rect_; }  // around all of them. REQUIRES: any()
  std::int64_t count() const;                 // of cells in which any bit changed

  // After minus before, as stored, row after row; 0 for equal numbers, NaN if one of them is NaN.
  std::vector<double> differences(std::size_t component) const;
  std::vector<bool> changed(std::size_t component) const;

 private:
  template <class Visit>
  void visit(std::size_t component, Visit visitCell) const;

  NumberType dtype_;
  Rect rect_{};
  std::vector<const ChangedCells*> changes_;
};

}  // namespace tovrdb::tool
