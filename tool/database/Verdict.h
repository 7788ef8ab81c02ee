// What one check of a database file found.
#pragma once

#include <string>
#include <vector>

namespace tovrtool {

struct Verdict {
  std::string name;
  std::string detail;               // what was looked at
  std::vector<std::string> faults;  // what is wrong, and where; none: all is well

  bool ok() const { return faults.empty(); }
};

}  // namespace tovrtool
