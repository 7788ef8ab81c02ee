#include "native/FoundCells.h"

#include "storage/StatusCodes.h"
#include "tool/cells/CellNumbers.h"
#include "tool/database/AreaPatch.h"
#include "tool/database/LibraryError.h"
#include "tool/database/Mosaic.h"
#include "tool/database/NumberForms.h"

namespace tovrpython {

using namespace tovrtool;

namespace {

// The type was asked for: where it does not suit, that is not the file's fault.
std::size_t valuesOf(std::int32_t cellBytes, const Dtype& dtype) {
  try {
    return valuesPerCell(cellBytes, dtype);
  } catch (const ToolError& error) {
    throw ToolError(kUsage, error.what());
  }
}

}  // namespace

FoundCells::FoundCells(Session& session, const CellQuery& query) : source_(locateCells(session, query)) {
  if (source_.areas.empty()) {
    throw statusError(tovr::kNoMatchingArea, "no area has cells in " + toText(source_.rect));
  }
  form_ = requireForm(source_.areas, query.form);
  cellBytes_ = source_.areas.front().cellBytes;
  values_ = valuesOf(cellBytes_, form_.dtype);
  if (query.fill) fill_ = cellOf(form_.dtype, values_, *query.fill);
}

CellBlock FoundCells::read(Session& session, const Rect& part) const {
  requireUnmoved(session, source_.areas);
  CellBlock block = source_.mosaic ? readMosaic(session, source_.areas, part, fill_).cells
                                   : readCells(session, source_.areas.front(), part);
  if (block.cellBytes == cellBytes_) return block;
  throw statusError(tovr::kNoMatchingArea, "the cells were replaced by some of another size: look again");
}

void FoundCells::patch(Session& session, const CellBlock& block) const {
  if (source_.mosaic) throw ToolError(kUsage, "a mosaic is for reading: write to its areas, one by one");
  Transaction transaction(session);
  requireUnmoved(session, source_.areas);
  patchArea(session, source_.areas.front(), {{block.rect, [&] { return block; }}});
  transaction.commit();
}

}  // namespace tovrpython
