// Names of areas: how a caller names one, and the texts by which messages do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NumberForm.h"
#include "client/cells/Rect.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

// Which area of a file: databases of type 1 find it by its screen's name, those of type 0 without.
struct AreaName {
  std::int32_t type = 0;
  std::string screen;
  Rect rect{};
};

// Throws Error if a screen's name is missing, or was given although screens are found by rectangle.
void requireSuits(const AreaName& area, int databaseType);

// What is stored beside the cells of a block.
struct BlockText {
  std::int32_t number = -1;           // other than -1: the area is added, never one of the same place rewritten
  std::string version;                // empty: a block that is rewritten keeps the text that it has
  FormOptions form{};                 // of the numbers, kept with the block
  std::optional<NumberType> dtype{};  // as the array tells it
};

// In messages: by the place alone, with the id, and with everything that tells areas apart.
std::string placeText(const AreaName& area);    // "0,0,7,3 of type 1 on screen left"
std::string areaText(const Placement& area);    // "area 3 (0,0,7,3)", if type and screen are known
std::string nameOf(const Placement& area);      // "area 3 (0,0,7,3 of type 1 on screen left)"
std::string blockText(const StoredArea& area);  // "the block of 37,324,800 bytes, 18 per cell, of 2026-11-20 10:15:00"
std::string listText(const std::vector<StoredArea>& areas);  // "left, 0,0,7,3; left, 8,0,15,3"

}  // namespace tovrdb
