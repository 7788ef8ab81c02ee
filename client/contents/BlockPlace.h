// The place of a block, and what is stored beside its cells.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "client/cells/NumberForm.h"
#include "client/cells/Rect.h"

namespace tovrdb {

// Which area of a file: databases of type 1 find it by its screen's name, those of type 0 without.
struct AreaName {
  std::int32_t type = 0;
  std::string screen;
  Rect rect{};
};

// Throws Error if a screen's name is missing, or was given although screens are found by rectangle.
void requireSuits(const AreaName& area, int databaseType);

struct BlockText {
  std::int32_t number = -1;           // other than -1: the area is added, never one of the same place rewritten
  std::string version;                // empty: a block that is rewritten keeps the text that it has
  FormOptions form{};                 // of the numbers, kept with the block
  std::optional<NumberType> dtype{};  // as the array tells it
};

}  // namespace tovrdb
