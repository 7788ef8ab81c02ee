// Finds the rectangles that overlap another without a look at all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "client/cells/Rect.h"

namespace tovrdb {

class PlaceIndex {
 public:
  // `items` are places of the index from 0 on, in this order.
  template <class Items, class PlaceOf>
  PlaceIndex(const Items& items, const PlaceOf& placeOf) {
    for (std::size_t i = 0; i < items.size(); ++i) add(placeOf(items[i]), i);
    sort();
  }

  struct Place {
    std::int32_t type = 0;
    Rect rect{};
  };

  // The items of the type that have cells in common with the rectangle, the first first.
  std::vector<std::size_t> overlapping(const Place& place) const;

 private:
  struct Entry {
    Rect rect;
    std::size_t item;
    std::int32_t reach;  // the lowest bottom of this one and those before it
  };

  void add(const Place& place, std::size_t item);
  void sort();

  std::map<std::int32_t, std::vector<Entry>> entries_;  // by their tops
};

}  // namespace tovrdb
