// Numbers as reports print them.
#pragma once

#include <string>

namespace tovrdb {

// The fewest digits that read back as the same number: 16777216, 0.1, 1e+20.
std::string numberText(double value);

// As many decimals as a difference of `step` takes, without zeros at their end; all digits where `step` is not above 0.
std::string numberText(double value, double step);

}  // namespace tovrdb
