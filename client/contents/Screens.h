// The screens of a database file and their names.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "client/cells/Rect.h"
#include "client/session/Session.h"

namespace tovrdb {

struct StoredScreen {
  std::int64_t id = 0;
  std::string name;
  Rect rect{};
};

// In the order in which they were stored. Throws Error on failure.
std::vector<StoredScreen> storedScreens(Session& session);

// Those whose rows hold numbers: the library fails at the first row that does not, which the checks name. Throws Error
// on failure.
std::vector<StoredScreen> readableScreens(Session& session);

// The first screen of that name; `screens.end()` if there is none.
std::vector<StoredScreen>::const_iterator findScreen(const std::vector<StoredScreen>& screens, const std::string& name);

// The screen of that name. Throws Error, which lists the screens, if there is none.
const StoredScreen& screenNamed(const std::vector<StoredScreen>& screens, const std::string& name);

// The name without blanks, in lower case: two names with the same result read alike. Folds the letters of ASCII,
// Latin-1, Greek and Cyrillic (their simple case pairs in Unicode); others stay as they are.
std::string foldedName(const std::string& name);

// Tells which new names are probably typing errors of known ones.
class ScreenNames {
 public:
  void add(const std::string& name);
  bool has(const std::string& name) const { return names_.count(name) == 1; }

  // Why `name`, which is new, is probably a typing error, such as "begins or ends with a blank"; empty if it is not.
  std::string doubt(const std::string& name) const;

 private:
  std::set<std::string> names_;
  std::map<std::string, std::string> byFold_;  // the first name of each fold
};

}  // namespace tovrdb
