// Cells of a file that are looked up once, then read and written part by part.
//
// The file may change in between: every operation makes sure that the areas are still there and keep the same form of
// numbers. That form is stored behind the cells, so reading it is expensive: it is read again only after this session
// or another program has written to the file.
#pragma once

#include <vector>

#include "client/cells/NumberForm.h"
#include "client/reading/CellQuery.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb::python {

class FoundCells {
 public:
  // Reads no cells. Throws Error if there are none, or if the form of their numbers is unknown.
  FoundCells(Session& session, const CellQuery& query);

  const CellSource& source() const { return source_; }
  const NumberForm& form() const { return form_; }
  std::size_t values() const { return values_; }  // of a cell

  // Reads a part from one state of the file. Throws Error. REQUIRES: the source's rectangle holds it.
  CellBlock read(Session& session, const Rect& part);

  // Writes cells in a transaction of its own. Throws Error, also for a mosaic; then nothing is written.
  // REQUIRES: the source's rectangle holds the block's, and both have as many bytes per cell.
  void patch(Session& session, const CellBlock& block);

 private:
  void requireUnchanged(Session& session, const Rect& part);

  CellSource source_;
  NumberForm form_;
  std::int32_t cellBytes_ = 0;
  std::size_t values_ = 0;
  Bytes fill_;                            // of a mosaic: one cell
  std::vector<SessionState> verifiedAt_;  // the state in which each area's form was last checked
};

}  // namespace tovrdb::python
