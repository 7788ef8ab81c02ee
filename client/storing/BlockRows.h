// The rows of blocks and of their areas, written as the library writes them, value by value.
//
// The library's own insertData reads all screens and all areas before each block; who stores ten thousand of them has
// read them once already.
#pragma once

#include <cstdint>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/contents/BlockPlace.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// All throw Error on failure. REQUIRES: a transaction.

// What an area and its block hold beside the cells.
struct AreaRow {
  std::int64_t screenId = 0;
  std::int32_t type = 0;
  std::int32_t number = 0;
  std::string version;
};

// The keys of the rows that are added.
struct AreaKeys {
  std::int64_t area = 0;
  std::int64_t block = 0;
};
AreaKeys addAreaRows(Session& session, const AreaRow& row, const CellBlock& block);

// The area and its block keep their keys.
void rewriteAreaRows(Session& session, const StoredArea& area, const AreaRow& row, const CellBlock& block);

// Of the area's block; nothing is written where it has that text.
void rewriteVersion(Session& session, const StoredArea& area, const std::string& version);

// The block's stored bytes only; the area counts as written now.
void rewriteBlobOf(Session& session, const StoredArea& area, const Bytes& blob);

// With their blocks, but for those that other areas have too.
void deleteAreaRows(Session& session, const std::vector<StoredArea>& areas);

// The screen that the library adds for the first block that names it.
std::int64_t addScreenFor(Session& session, const AreaName& area);

}  // namespace tovrdb
