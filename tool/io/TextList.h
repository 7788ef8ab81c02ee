// Lists in messages.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tovrtool {

// "a, b, c"; of long lists the beginning: "a, b and 12 more"; "none" of an empty one.
std::string shortList(const std::vector<std::string>& items, const std::string& separator = ", ");

// "1 area", "2 areas".
std::string counted(std::size_t number, const std::string& singular);

}  // namespace tovrtool
