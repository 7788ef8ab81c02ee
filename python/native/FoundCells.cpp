#include "native/FoundCells.h"

#include <fmt/core.h>

#include "client/cells/CellNumbers.h"
#include "client/reading/NumberForms.h"
#include "client/session/SqlQuery.h"
#include "client/storing/Changes.h"
#include "storage/StatusCodes.h"

namespace tovrdb::python {

namespace {

// A type that does not fit the cells is the caller's mistake, not damage to the file.
std::size_t valuesOf(std::int32_t cellBytes, NumberType dtype) {
  try {
    return valuesPerCell(cellBytes, dtype);
  } catch (const Error& error) {
    throw Error(kInvalid, error.what());
  }
}

std::string formText(const StoredArea& area) {
  const auto form = keptForm(area);
  return fmt::format("{} bytes per cell{}", area.cellBytes, form ? " (" + toText(*form) + ")" : "");
}

void requireSameForm(const StoredArea& before, const StoredArea& now) {
  if (now.cellBytes == before.cellBytes && keptForm(now) == keptForm(before)) return;
  throw statusError(tovr::kNoMatchingArea,
                    fmt::format("area {} was replaced since it was looked up: it had {}, now it has {}; look it up "
                                "again",
                                now.id, formText(before), formText(now)));
}

// While it exists, everything is read from one state of the file.
class SingleState {
 public:
  explicit SingleState(Session& session) : session_(session.inTransaction() ? nullptr : &session) {
    if (session_ != nullptr) session_->require(session_->connection().exec("BEGIN"));
  }
  SingleState(const SingleState&) = delete;
  SingleState& operator=(const SingleState&) = delete;
  ~SingleState() {
    if (session_ != nullptr) session_->connection().exec("COMMIT");
  }

 private:
  Session* session_;
};

}  // namespace

FoundCells::FoundCells(Session& session, const CellQuery& query) {
  const SingleState single(session);
  source_ = locateCells(session, query);
  if (source_.areas.empty()) {
    throw statusError(tovr::kNoMatchingArea, "no area has cells in " + toText(source_.rect));
  }
  form_ = requireForm(source_.areas, query.form);
  cellBytes_ = source_.areas.front().cellBytes;
  values_ = valuesOf(cellBytes_, form_.dtype);
  if (query.fill) fill_ = cellOf(form_.dtype, values_, *query.fill);
  verifiedAt_.assign(source_.areas.size(), session.state());
}

CellBlock FoundCells::read(Session& session, const Rect& part) {
  const SingleState single(session);
  requireUnchanged(session, part);
  return readLocated(session, source_, part, fill_).cells;
}

void FoundCells::patch(Session& session, const CellBlock& block) {
  if (source_.mosaic) throw Error(kInvalid, "a mosaic is read-only: write to its areas, one by one");
  const Applied applied = applyChanges(session, [&](Session&) {
    requireUnchanged(session, block.rect);
    return ChangePlan{{PatchBlock{source_.areas.front(), {{block.rect, [&] { return block; }}}}}, {}};
  });
  verifiedAt_.front() = applied.state;  // a patch leaves the form as it is
}

// Of a mosaic, checks only the areas that the part meets: reading a form reads past a whole block.
void FoundCells::requireUnchanged(Session& session, const Rect& part) {
  requireUnmoved(session, source_.areas);
  const SessionState state = session.state();
  for (std::size_t i = 0; i < source_.areas.size(); ++i) {
    if (verifiedAt_[i] == state || !common(source_.areas[i].rect, part)) continue;
    const StoredArea now = storedArea(session, source_.areas[i]);
    requireReadable(now);
    requireSameForm(source_.areas[i], now);
    verifiedAt_[i] = state;
  }
}

}  // namespace tovrdb::python
