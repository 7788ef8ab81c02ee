// Asks before a person's data is deleted.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tovrtool {

// Shows what goes and asks on a terminal, unless it was `forced` by `option`. Throws ToolError where the answer is no,
// and where nobody can be asked.
void confirmDeletion(const std::vector<std::string>& what, bool forced, const std::string& option);

// The option that forces it.
void addForcedDeletion(CLI::App& command, bool& force);

}  // namespace tovrtool
