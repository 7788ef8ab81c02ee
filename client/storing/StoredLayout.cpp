#include "client/storing/StoredLayout.h"

#include <fmt/core.h>

#include <algorithm>

#include "client/base/Text.h"

namespace tovrdb {
namespace {

using NamedRects = std::vector<std::pair<std::string, Rect>>;

std::string listed(const NamedRects& things) {
  std::vector<std::string> texts;
  for (const auto& [name, rect] : things) texts.push_back(fmt::format("{} ({})", name, toText(rect)));
  return shortList(texts);
}

template <class Predicate>
const StoredScreen* firstScreen(const std::vector<StoredScreen>& screens, const Predicate& qualifies) {
  const auto found = std::find_if(screens.begin(), screens.end(), qualifies);
  return found != screens.end() ? &*found : nullptr;
}

}  // namespace

void PlaceIndex::add(std::int32_t type, const Rect& rect, std::size_t item) {
  if (isSound(rect)) entries_[type].push_back({rect, item, rect.bottom});
}

void PlaceIndex::sort() {
  for (auto& [type, entries] : entries_) {
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.rect.top < b.rect.top; });
    for (std::size_t i = 1; i < entries.size(); ++i) {
      entries[i].reach = std::max(entries[i].reach, entries[i - 1].reach);
    }
  }
}

std::vector<std::size_t> PlaceIndex::overlapping(std::int32_t type, const Rect& rect) const {
  std::vector<std::size_t> found;
  const auto ofType = entries_.find(type);
  if (ofType == entries_.end()) return found;
  const auto& entries = ofType->second;
  auto entry = std::upper_bound(entries.begin(), entries.end(), rect.bottom,
                                [](std::int32_t bottom, const Entry& other) { return bottom < other.rect.top; });
  while (entry != entries.begin() && (--entry)->reach >= rect.top) {
    if (common(entry->rect, rect)) found.push_back(entry->item);
  }
  std::sort(found.begin(), found.end());
  return found;
}

StoredLayout::StoredLayout(const StoredPlaces& places) : places_(places) {
  for (std::size_t i = 0; i < places.areas.size(); ++i) {
    const StoredArea& area = places.areas[i];
    index_.add(area.type, area.rect, i);
    firstOfType_.emplace(std::pair(area.screenId, area.type), i);
  }
  index_.sort();
  for (const StoredScreen& screen : places.screens) byName_.emplace(screen.name, &screen);
}

const StoredScreen* StoredLayout::screenNamed(const std::string& name) const {
  const auto found = byName_.find(name);
  return found != byName_.end() ? found->second : nullptr;
}

const StoredScreen* StoredLayout::screenHolding(const Rect& rect) const {
  return firstScreen(places_.screens, [&](const StoredScreen& screen) { return holds(screen.rect, rect); });
}

const StoredScreen* StoredLayout::screenExactly(const Rect& rect) const {
  return firstScreen(places_.screens, [&](const StoredScreen& screen) { return screen.rect == rect; });
}

std::optional<std::size_t> StoredLayout::firstOfType(std::int64_t screenId, std::int32_t type) const {
  const auto found = firstOfType_.find({screenId, type});
  return found != firstOfType_.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<std::size_t> StoredLayout::answering(std::int64_t screenId, std::int32_t type, const Rect& rect,
                                                   std::optional<std::size_t> moved, const Rect& to) const {
  for (const std::size_t index : overlapping(type, rect)) {
    const StoredArea& area = places_.areas[index];
    if (area.screenId == screenId && holds(index == moved ? to : area.rect, rect)) return index;
  }
  return std::nullopt;
}

const std::string& StoredLayout::screensText() {
  if (!screensText_.empty()) return screensText_;
  NamedRects screens;
  for (const StoredScreen& screen : places_.screens) screens.emplace_back(screen.name, screen.rect);
  return screensText_ = "screens: " + listed(screens);
}

const std::string& StoredLayout::areasText(std::int32_t type) {
  const auto [text, fresh] = areasTexts_.emplace(type, "");
  if (!fresh) return text->second;
  NamedRects areas;
  for (const StoredArea& area : places_.areas) {
    if (area.type == type) areas.emplace_back(area.screen, area.rect);
  }
  return text->second = fmt::format("areas of type {}: {}", type, listed(areas));
}

std::string StoredLayout::touchedText(std::int32_t type, const Rect& rect, std::int64_t screenId) {
  NamedRects touched;
  for (const std::size_t index : overlapping(type, rect)) {
    const StoredArea& area = places_.areas[index];
    if (screenId == 0 || area.screenId == screenId) touched.emplace_back(fmt::format("area {}", area.id), area.rect);
  }
  return touched.empty() ? "it overlaps none; " + areasText(type) : "it overlaps " + listed(touched);
}

}  // namespace tovrdb
