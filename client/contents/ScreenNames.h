// Names of screens that are probably slips: they differ from a stored name only as a hurried person's typing does.
#pragma once

#include <map>
#include <set>
#include <string>

namespace tovrdb {

// The name without blanks, in lower case: two names with the same one read alike. Folds the letters of ASCII, Latin-1,
// Greek and Cyrillic (their simple case pairs in Unicode); others stay as they are.
std::string foldedName(const std::string& name);

class ScreenNames {
 public:
  void add(const std::string& name);
  bool has(const std::string& name) const { return names_.count(name) == 1; }

  // Why `name`, which is new, is probably a slip; empty if it is not: "begins or ends with a blank".
  std::string doubt(const std::string& name) const;

 private:
  std::set<std::string> names_;
  std::map<std::string, std::string> byFold_;  // the first name of each fold
};

}  // namespace tovrdb
