// Blocks of cells out of a database, by the library's own rules.
#pragma once

#include "tool/cells/CellBlock.h"
#include "tool/database/BlockPlace.h"
#include "tool/database/Session.h"

namespace tovrtool {

// The cells of a rectangle. Throws ToolError, which tells what there is instead.
CellBlock fetchBlock(Session& session, const AreaName& area);

}  // namespace tovrtool
