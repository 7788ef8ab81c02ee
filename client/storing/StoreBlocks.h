// Stores blocks as a plan says: all of them in one transaction, or none.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/session/Session.h"
#include "client/storing/StorePlan.h"

namespace tovrdb {

// The cells of a wanted block, asked once, when they are stored.
using BlockLoader = std::function<CellBlock(std::size_t block)>;

struct StoreReport {
  std::vector<std::string> notices;     // what was replaced, removed, patched or added beside
  std::vector<std::int64_t> blockKeys;  // one a wanted block
};

// Plans under the lock of the transaction, so that nobody writes between the decision and the rows. Throws Error,
// with nothing stored: what planStore objects to (kConflict), what `load` throws, what the engine refuses.
StoreReport storeBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                        const BlockLoader& load);

// Throws Error where storeBlocks would object; nothing is written in any case.
void requireStorable(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules);

}  // namespace tovrdb
