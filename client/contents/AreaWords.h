// Areas and blocks in messages.
#pragma once

#include <string>

#include "client/contents/BlockPlace.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

std::string placeText(const AreaName& area);    // "0,0,7,3 of type 1 on the screen left"
std::string areaText(const StoredArea& area);   // "area 3 (0,0,7,3)"
std::string blockText(const StoredArea& area);  // "the block of 37,324,800 bytes, 18 per cell, of 2026-11-20 10:15:00"
std::string listText(const std::vector<StoredArea>& areas);  // "left, 0,0,7,3; left, 8,0,15,3"

}  // namespace tovrdb
