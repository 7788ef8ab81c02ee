// Status codes of the library in words.
#pragma once

#include <string>

namespace tovrtool {

// What the code means and, where that helps, what to do about it.
std::string codeText(int code);

}  // namespace tovrtool
