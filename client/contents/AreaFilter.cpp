#include "client/contents/AreaFilter.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <system_error>

#include "client/base/Text.h"
#include "client/contents/Screens.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

bool passes(const AreaFilter& filter, const StoredArea& area) {
  return (!filter.type || area.type == *filter.type) && (filter.screen.empty() || area.screen == filter.screen) &&
         (!filter.rect || common(area.rect, *filter.rect));
}

std::string toText(const IdRange& range) {
  return range.first == range.last ? std::to_string(range.first) : fmt::format("{}-{}", range.first, range.last);
}

}  // namespace

std::vector<StoredArea> areasThatPass(Session& session, const AreaFilter& filter) {
  if (!filter.screen.empty()) screenNamed(storedScreens(session), filter.screen);
  std::vector<StoredArea> areas = storedAreas(session);
  areas.erase(std::remove_if(areas.begin(), areas.end(), [&](const StoredArea& area) { return !passes(filter, area); }),
              areas.end());
  return areas;
}

IdRange parseIdRange(std::string_view text) {
  IdRange range;
  const char* const end = text.data() + text.size();
  auto parsed = std::from_chars(text.data(), end, range.first);
  range.last = range.first;
  if (parsed.ec == std::errc() && parsed.ptr != end && *parsed.ptr == '-') {
    parsed = std::from_chars(parsed.ptr + 1, end, range.last);
  }
  if (parsed.ec != std::errc() || parsed.ptr != end || range.first < 0 || range.last < range.first) {
    throw std::invalid_argument(fmt::format("'{}' is not an id or a range of ids, such as 3 or 5-8", text));
  }
  return range;
}

std::vector<StoredArea> areasWithIds(Session& session, const std::vector<IdRange>& ids) {
  const std::vector<StoredArea> areas = storedAreas(session);  // in the order of their ids
  std::vector<bool> chosen(areas.size());
  std::vector<std::string> missing;
  for (const IdRange& range : ids) {
    const auto from = std::lower_bound(areas.begin(), areas.end(), range.first,
                                       [](const StoredArea& area, std::int64_t id) { return area.id < id; });
    const auto to = std::find_if(from, areas.end(), [&](const StoredArea& area) { return area.id > range.last; });
    if (from == to) missing.push_back(toText(range));
    std::fill(chosen.begin() + (from - areas.begin()), chosen.begin() + (to - areas.begin()), true);
  }
  if (!missing.empty()) {
    throw statusError(tovr::kNoMatchingArea, fmt::format("there is no area {}", shortList(missing)))
        .suggest(Remedy::kListAreas);
  }
  std::vector<StoredArea> found;
  for (std::size_t i = 0; i < areas.size(); ++i) {
    if (chosen[i]) found.push_back(areas[i]);
  }
  return found;
}

}  // namespace tovrdb
