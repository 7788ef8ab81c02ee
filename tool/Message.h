// Messages for the person at the terminal: standard error, one line each.
#pragma once

#include <string>

namespace tovrtool {

// "tovrdb: TEXT"
void message(const std::string& text);

// The text with control characters shown as '?', so that a stored name cannot steer a terminal.
std::string printable(const std::string& text);

}  // namespace tovrtool
