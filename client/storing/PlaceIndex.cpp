#include "client/storing/PlaceIndex.h"

#include <algorithm>

namespace tovrdb {

void PlaceIndex::add(const Place& place, std::size_t item) {
  if (isSound(place.rect)) entries_[place.type].push_back({place.rect, item, place.rect.bottom});
}

void PlaceIndex::sort() {
  for (auto& [type, entries] : entries_) {
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.rect.top < b.rect.top; });
    for (std::size_t i = 1; i < entries.size(); ++i)
      entries[i].reach = std::max(entries[i].reach, entries[i - 1].reach);
  }
}

std::vector<std::size_t> PlaceIndex::overlapping(const Place& place) const {
  std::vector<std::size_t> found;
  const auto ofType = entries_.find(place.type);
  if (ofType == entries_.end()) return found;
  const auto& entries = ofType->second;
  auto entry = std::upper_bound(entries.begin(), entries.end(), place.rect.bottom,
                                [](std::int32_t bottom, const Entry& other) { return bottom < other.rect.top; });
  while (entry != entries.begin() && (--entry)->reach >= place.rect.top) {
    if (common(entry->rect, place.rect)) found.push_back(entry->item);
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace tovrdb
