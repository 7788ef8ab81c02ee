// Cells of a file that were looked up once and are then read, and written, part by part.
//
// Others may change the file meanwhile: every operation makes sure that the areas still are what they were.
#pragma once

#include "tool/cells/NumberForm.h"
#include "tool/database/CellQuery.h"
#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"

namespace tovrpython {

class FoundCells {
 public:
  // Reads no cells. Throws ToolError: there are none, or nothing tells their numbers.
  FoundCells(tovrtool::Session& session, const tovrtool::CellQuery& query);

  const tovrtool::CellSource& source() const { return source_; }
  const tovrtool::NumberForm& form() const { return form_; }
  std::size_t values() const { return values_; }  // of a cell

  // The cells of a part. Throws ToolError. REQUIRES: the source's rectangle holds it.
  tovrtool::CellBlock read(tovrtool::Session& session, const tovrtool::Rect& part) const;

  // Puts cells in, in a transaction of its own. Throws ToolError, also for a mosaic; nothing is written then.
  // REQUIRES: the source's rectangle holds the block's, and both have as many bytes per cell.
  void patch(tovrtool::Session& session, const tovrtool::CellBlock& block) const;

 private:
  tovrtool::CellSource source_;
  tovrtool::NumberForm form_;
  std::int32_t cellBytes_ = 0;
  std::size_t values_ = 0;
  tovrtool::Bytes fill_;  // of a mosaic: one cell
};

}  // namespace tovrpython
