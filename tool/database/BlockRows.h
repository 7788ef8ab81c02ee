// The rows of blocks and of their areas, written as the library writes them, value by value.
//
// The library's own insertData reads all screens and all areas before each block; who stores ten thousand of them has
// read them once already.
#pragma once

#include <cstdint>
#include <vector>

#include "tool/cells/CellBlock.h"
#include "tool/database/BlockPlace.h"
#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredArea.h"

namespace tovrtool {

// All throw ToolError on failure. REQUIRES: a transaction.

// The keys of the rows that are added.
struct AreaKeys {
  std::int64_t area = 0;
  std::int64_t block = 0;
};
AreaKeys addAreaRows(Session& session, std::int64_t screenId, std::int32_t type, const BlockText& text,
                     const CellBlock& block);

// The area keeps its keys, its type and, unless there is a new one, the text of its block.
void rewriteAreaRows(Session& session, const StoredArea& area, std::int64_t screenId, const BlockText& text,
                     const CellBlock& block);

// The block's stored bytes only; the area counts as written now.
void rewriteBlobOf(Session& session, const StoredArea& area, const Bytes& blob);

// With their blocks, but for those that other areas have too.
void deleteAreaRows(Session& session, const std::vector<StoredArea>& areas);

// The screen that the library adds for the first block that names it.
std::int64_t addScreenFor(Session& session, const AreaName& area);

}  // namespace tovrtool
