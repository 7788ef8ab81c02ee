// Blocks of cells out of a database, by the library's own rules.
#pragma once

#include "client/cells/CellBlock.h"
#include "client/contents/BlockPlace.h"
#include "client/session/Session.h"

namespace tovrdb {

// The cells of a rectangle. Throws Error, which tells what there is instead.
CellBlock fetchBlock(Session& session, const AreaName& area);

}  // namespace tovrdb
