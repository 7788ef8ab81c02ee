// Chooses stored areas by what they have in common, or by their ids.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/cells/Rect.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"

namespace tovrdb {

struct AreaFilter {
  std::optional<std::int32_t> type;
  std::string screen;        // empty: of any
  std::optional<Rect> rect;  // areas that have cells in it
};

// In the order in which they were stored; may be empty. Throws Error if the screen does not exist.
std::vector<StoredArea> areasThatPass(Session& session, const AreaFilter& filter);

// Ids from `first` to `last`.
struct IdRange {
  std::int64_t first = 0;
  std::int64_t last = 0;
};

// "3" or "5-8". Throws std::invalid_argument with the reason otherwise.
IdRange parseIdRange(std::string_view text);

// The areas with these ids. Throws Error if one of the ranges has none.
std::vector<StoredArea> areasWithIds(Session& session, const std::vector<IdRange>& ids);

}  // namespace tovrdb
