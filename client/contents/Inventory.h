// Everything that a database file holds, by names that mean the same in another file, as keys of rows do not.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/contents/StoredArea.h"
#include "client/session/Session.h"

namespace tovrdb {

// The row that holds an item's stored payload.
struct BlobPlace {
  std::string table;
  std::int64_t id = 0;
  std::int64_t bytes = 0;
};

// The parts of an item's name.
struct ItemPlace {
  const char* kind = "";  // metadata, attached_database, screen, block, data, measurement
  std::string screen;     // of a block; the screen itself
  std::string type;       // of a block and of data
  std::optional<Rect> rect;
  std::optional<std::int64_t> id;  // of a measurement
};

struct Item {
  std::string name;  // unique: "block of left, 0,0,63,31, type 1"
  ItemPlace place;
  std::vector<std::pair<std::string, std::string>> fields;  // in the same order for all items of a kind
  std::optional<BlobPlace> blob;
  std::optional<StoredArea> area;  // of a block; if it has a fault, fields and blob are meaningless
};

// Grouped by kind, in a fixed order. Leaves out the times of rows. Throws Error on failure.
std::vector<Item> takeInventory(Session& session);

}  // namespace tovrdb
