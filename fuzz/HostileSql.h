// The statements that turn the nine tables of a new database file into what no writer of ours leaves behind: wrong
// types, NULLs, rectangles of any size, blobs that are none, triggers that raise texts, views in place of tables,
// missing and cyclic references, keys at the end of their range.
#pragma once

#include <string>
#include <vector>

#include "crypto/IEncryption.h"
#include "fuzz/Choices.h"

namespace tovrfuzz {

// To be run one by one after the tables were created; those that fail are part of the game.
std::vector<std::string> hostileSql(Choices& choices, tovr::IEncryption& encryption);

}  // namespace tovrfuzz
