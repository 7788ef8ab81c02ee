// A plan in words: what it did.
#pragma once

#include <string>
#include <vector>

#include "client/storing/StorePlan.h"

namespace tovrdb {

// What was replaced, removed, patched or reinterpreted, and which screens were added; a line each.
std::vector<std::string> noticesOf(const StorePlan& plan, const StoredPlaces& stored,
                                   const std::vector<WantedBlock>& wanted);

}  // namespace tovrdb
