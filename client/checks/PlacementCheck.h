// Checks of where areas and screens lie.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "client/checks/Verdict.h"
#include "client/contents/RowNames.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"

namespace tovrdb {

struct BlockSize {
  std::uint64_t bytes = 0;
  std::int64_t cellBytes = 0;
};
using BlockSizes = std::map<std::int64_t, BlockSize>;  // of the blocks that decrypt, by key

// Faults: a block that is not its rectangle's cells, a rectangle that holds none.
void checkLengths(const std::vector<Placement>& areas, const BlockSizes& sizes, Verdict& verdict);

// Faults: numbers of screens and placements that are not numbers. Warnings: a screen that no request can reach.
void checkScreens(Session& session, const RowNames& names, Verdict& verdict);

// Warnings: the library reads from such areas, but not all of their cells.
void checkInsideScreens(const std::vector<Placement>& areas, Verdict& verdict);
void checkOverlaps(const std::vector<Placement>& areas, Verdict& verdict);

}  // namespace tovrdb
