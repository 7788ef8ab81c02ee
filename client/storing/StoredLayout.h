// What lies where: the screens and areas of a file, and the blocks of a batch, as storing looks at them. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/cells/Rect.h"
#include "client/contents/AreaNames.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

// Finds the rectangles that overlap another without looking at all of them.
class PlaceIndex {
 public:
  void add(std::int32_t type, const Rect& rect, std::size_t item);
  // Call after the last add().
  void sort();

  // Items of the type that overlap the rectangle, in ascending order.
  std::vector<std::size_t> overlapping(std::int32_t type, const Rect& rect) const;

 private:
  struct Entry {
    Rect rect;
    std::size_t item;
    std::int32_t reach;  // the largest bottom of this entry and those before it
  };

  std::map<std::int32_t, std::vector<Entry>> entries_;  // by type; sorted by their tops
};

struct StoredPlaces {
  int databaseType = 0;  // 0: screens are found by rectangle; 1: by name
  std::vector<StoredScreen> screens;
  std::vector<StoredArea> areas;
};

// Looks up places in a file that is known as a whole. Areas are given by their index in StoredPlaces.
class StoredLayout {
 public:
  // `places` is borrowed.
  explicit StoredLayout(const StoredPlaces& places);

  // Null if there is none; else the first.
  const StoredScreen* screenNamed(const std::string& name) const;
  const StoredScreen* screenHolding(const Rect& rect) const;
  const StoredScreen* screenExactly(const Rect& rect) const;

  std::optional<std::size_t> firstOfType(std::int64_t screenId, std::int32_t type) const;
  std::vector<std::size_t> overlapping(std::int32_t type, const Rect& rect) const {
    return index_.overlapping(type, rect);
  }

  // Which area the library would read `rect` from: the first of the type on the screen that holds it. `moved` is taken
  // to have the rectangle `to`.
  std::optional<std::size_t> answering(std::int64_t screenId, std::int32_t type, const Rect& rect,
                                       std::optional<std::size_t> moved, const Rect& to) const;

  // For messages, which repeat them: "screens: left (0,0,63,63)", "areas of type 1: left (0,0,7,3)".
  const std::string& screensText();
  const std::string& areasText(std::int32_t type);
  // "it touches area 1 (0,0,7,3)"; the areas of its type if it touches none. Of the screen only unless that is 0.
  std::string touchedText(std::int32_t type, const Rect& rect, std::int64_t screenId);

 private:
  const StoredPlaces& places_;
  PlaceIndex index_;
  std::map<std::string, const StoredScreen*> byName_;                         // the first of each name
  std::map<std::pair<std::int64_t, std::int32_t>, std::size_t> firstOfType_;  // by screen and type
  std::string screensText_;
  std::map<std::int32_t, std::string> areasTexts_;  // by type
};

}  // namespace tovrdb
