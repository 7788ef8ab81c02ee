// Everything that a database file holds, by names that mean the same in another file: keys of rows do not.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tool/database/Session.h"
#include "tool/database/StoredArea.h"

namespace tovrtool {

// The row that holds an item's stored payload.
struct BlobPlace {
  std::string table;
  std::int64_t id = 0;
  std::int64_t bytes = 0;
};

struct Item {
  std::string name;                                         // unique: "block of left, 0,0..63,31, type 1"
  std::vector<std::pair<std::string, std::string>> fields;  // in the same order for all items of a kind
  std::optional<BlobPlace> blob;
  std::optional<StoredArea> area;  // of a block
};

// In a fixed order of kinds. Times of rows are left out. Throws ToolError on failure.
std::vector<Item> takeInventory(Session& session);

}  // namespace tovrtool
