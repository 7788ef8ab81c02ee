// Areas and blocks in messages: by their place alone, with their id, and with everything that tells them apart.
#pragma once

#include <string>

#include "client/contents/BlockPlace.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

std::string placeText(const AreaName& area);    // "0,0,7,3 of type 1 on screen left"
std::string areaText(const Placement& area);    // "area 3 (0,0,7,3)", if type and screen are known
std::string nameOf(const Placement& area);      // "area 3 (0,0,7,3 of type 1 on screen left)"
std::string blockText(const StoredArea& area);  // "the block of 37,324,800 bytes, 18 per cell, of 2026-11-20 10:15:00"
std::string listText(const std::vector<StoredArea>& areas);  // "left, 0,0,7,3; left, 8,0,15,3"

}  // namespace tovrdb
