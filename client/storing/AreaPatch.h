// Cells put into a stored block. Everything else of its rows stays: area number, layers, text, cell width.
#pragma once

#include <functional>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"

namespace tovrdb {

// A rectangle and where its cells come from, asked once, when they are needed.
struct Patch {
  Rect rect{};
  std::function<CellBlock()> cells;
};

// Deciphers the block from the first changed row on, puts all patches in, in their order, and stores it again. Throws
// Error where the stored block is damaged. REQUIRES: a transaction; the area holds every rectangle; cells of its
// width.
void patchArea(Session& session, const StoredArea& area, const std::vector<Patch>& patches);

}  // namespace tovrdb
