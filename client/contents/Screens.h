// The screens of a database file.
#pragma once

#include <cstdint>
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

// In the order in which they were stored.
std::vector<StoredScreen> storedScreens(Session& session);

// The screen of that name. Throws Error, which lists what there is, when there is none.
const StoredScreen& screenNamed(const std::vector<StoredScreen>& screens, const std::string& name);

// Both throw Error (kConflict) for a name that another screen has and, unless `force`, for one that differs from
// another's only in case or blanks, or that begins or ends with a blank. REQUIRES: a transaction.
//
// Unless `force`, in databases that find screens by rectangle, a screen is refused whose cells all lie in an older one:
// that one is always found first.
void addScreen(Session& session, const std::string& name, const Rect& rect, bool force);
// Areas and data refer to screens by key and stay where they are. Also throws if no screen is named `name`.
void renameScreen(Session& session, const std::string& name, const std::string& newName, bool force);

}  // namespace tovrdb
