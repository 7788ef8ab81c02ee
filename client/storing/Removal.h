// Areas, screens and data to delete. They are looked up first, so that a person can be asked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/contents/AreaFilter.h"
#include "client/contents/AreaNames.h"
#include "client/contents/HostData.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"
#include "client/storing/Changes.h"

namespace tovrdb {

struct Removal {
  std::vector<StoredArea> areas;
  std::optional<StoredScreen> screen;
  std::vector<StoredData> data;
  std::string note;  // what this means for other programs; usually empty
};

// Look up what the arguments name. Throw Error, which tells what there is instead.
Removal areasOfIds(Session& session, const std::vector<IdRange>& ids);
Removal areasOf(Session& session, const AreaFilter& filter);
Removal areaAt(Session& session, const AreaName& place);  // of exactly this rectangle
Removal screenOf(Session& session, const std::string& name, bool withAreas);
Removal dataOfType(Session& session, std::int32_t type);

// A line for each thing to be deleted.
std::vector<std::string> toTexts(const Removal& removal);

// Throws Error (kBusy) if one of the areas was changed since it was looked up.
ChangePlan planRemoval(Session& session, const Removal& removal);

}  // namespace tovrdb
