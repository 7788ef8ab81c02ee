// Lists and large numbers in messages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tovrtool {

// "a, b, c"; of long lists the beginning: "a, b and 12 more"; "none" of an empty one.
std::string shortList(const std::vector<std::string>& items, const std::string& separator = ", ");

// "37,324,800"
std::string grouped(std::int64_t number);

// "1 area", "2 areas".
std::string counted(std::size_t number, const std::string& singular);

}  // namespace tovrtool
