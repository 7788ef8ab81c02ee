// A plan in words: why it stops, and what it did.
#pragma once

#include <string>
#include <vector>

#include "tool/database/StorePlan.h"

namespace tovrtool {

// Throws ToolError unless there are no objections: a single one says it all, several are its details, a line each.
void requireNoObjections(const StorePlan& plan);

// What was replaced, removed or patched, and which screens came to be; a line each.
std::vector<std::string> noticesOf(const StorePlan& plan, const StoredPlaces& stored,
                                   const std::vector<WantedBlock>& wanted);

}  // namespace tovrtool
