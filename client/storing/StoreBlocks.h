// Stores blocks as a plan says: all of them in one transaction, or none.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"
#include "client/storing/Changes.h"
#include "client/storing/StorePlan.h"

namespace tovrdb {

// The cells of a wanted block, asked once, when they are stored.
using BlockLoader = std::function<CellBlock(std::size_t block)>;

// The changes that store the blocks, and what they replace, remove, patch or add beside. `wanted` and `load` are
// borrowed until the plan is applied. Throws Error (kConflict) with what planStore objects to.
ChangePlan planBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                      const BlockLoader& load);

// Plans and applies. The keys of the blocks are among Applied::keys. Throws Error, with nothing stored: what planBlocks
// and `load` throw, what the engine refuses.
Applied storeBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                    const BlockLoader& load);

}  // namespace tovrdb
