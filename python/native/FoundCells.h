// Cells of a file that were looked up once and are then read, and written, part by part.
//
// The file may change meanwhile: every operation makes sure that the areas are still there and hold the same form of
// numbers. That form is stored behind the cells and so is costly to read: it is read again only after something was
// written, by this session or by another program.
#pragma once

#include <vector>

#include "client/cells/NumberForm.h"
#include "client/reading/CellQuery.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb::python {

class FoundCells {
 public:
  // Reads no cells. Throws Error: there are none, or nothing tells their numbers.
  FoundCells(Session& session, const CellQuery& query);

  const CellSource& source() const { return source_; }
  const NumberForm& form() const { return form_; }
  std::size_t values() const { return values_; }  // of a cell

  // The cells of a part, all of one state of the file. Throws Error. REQUIRES: the source's rectangle holds it.
  CellBlock read(Session& session, const Rect& part);

  // Puts cells in, in a transaction of its own. Throws Error, also for a mosaic; nothing is written then.
  // REQUIRES: the source's rectangle holds the block's, and both have as many bytes per cell.
  void patch(Session& session, const CellBlock& block);

 private:
  void requireUnchanged(Session& session, const Rect& part);

  CellSource source_;
  NumberForm form_;
  std::int32_t cellBytes_ = 0;
  std::size_t values_ = 0;
  Bytes fill_;                            // of a mosaic: one cell
  std::vector<SessionState> verifiedAt_;  // the state in which each area's form was last seen to be the same
};

}  // namespace tovrdb::python
