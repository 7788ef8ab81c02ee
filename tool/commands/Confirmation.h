// Asks before a person's data is deleted.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tovrdb::tool {

// Shows what goes and asks on a terminal, unless `forced`. Throws Error if the answer is no, and if nobody can be
// asked.
void confirmDeletion(const std::vector<std::string>& what, bool forced);

// --force
void addForcedDeletion(CLI::App& command, bool& force);

}  // namespace tovrdb::tool
