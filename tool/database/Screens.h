// The screens of a database file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tool/cells/Rect.h"
#include "tool/database/Session.h"

namespace tovrtool {

struct StoredScreen {
  std::int64_t id = 0;
  std::string name;
  Rect rect{};
};

// In the order in which they were stored.
std::vector<StoredScreen> storedScreens(Session& session);

// The screen of that name. Throws ToolError, which lists what there is, when there is none.
const StoredScreen& screenNamed(const std::vector<StoredScreen>& screens, const std::string& name);

// Throws ToolError when there is a screen of that name already. REQUIRES: a transaction.
void addScreen(Session& session, const std::string& name, const Rect& rect);

}  // namespace tovrtool
