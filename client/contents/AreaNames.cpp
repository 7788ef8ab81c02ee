#include "client/contents/AreaNames.h"

#include <fmt/core.h>

#include "client/base/Error.h"
#include "client/base/Text.h"

namespace tovrdb {

void requireSuits(const AreaName& area, int databaseType) {
  if (databaseType == 1 && area.screen.empty()) {
    throw Error(kInvalid, "the database finds screens by name (type 1), and none was given")
        .suggest(Remedy::kGiveScreen);
  }
  if (databaseType == 0 && !area.screen.empty()) {
    throw Error(kInvalid, "the database finds screens by rectangle (type 0), not by name").suggest(Remedy::kOmitScreen);
  }
}

std::string placeText(const AreaName& area) {
  return fmt::format("{} of type {}{}", toText(area.rect), area.type,
                     area.screen.empty() ? "" : " on screen " + area.screen);
}

std::string areaText(const Placement& area) { return fmt::format("area {} ({})", area.id, toText(area.rect)); }

std::string nameOf(const Placement& area) {
  return fmt::format("area {} ({})", area.id, placeText({area.type, area.screenRect ? area.screen : "", area.rect}));
}

std::string listText(const std::vector<StoredArea>& areas) {
  std::vector<std::string> texts;
  for (const StoredArea& area : areas) texts.push_back(toText(area));
  return shortList(texts, "; ");
}

std::string blockText(const StoredArea& area) {
  const std::int64_t bytes = columnsOf(area.rect) * rowsOf(area.rect) * area.cellBytes;
  return fmt::format("the block of {} bytes, {} per cell, of {}", grouped(bytes), area.cellBytes, area.changed);
}

}  // namespace tovrdb
