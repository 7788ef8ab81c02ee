// The two generations of encrypted files: those of SQLCipher 3.x and those of 4.x, with other page sizes, key
// derivation and checksums.
#pragma once

#include <string>

#include "client/session/Session.h"

namespace tovrdb {

// The generation of the open file, and that of the files which the engine makes: 3 or 4.
int fileGeneration(Session& session);
int engineGeneration(Session& session);

// "4.x"
std::string generationText(int generation);

}  // namespace tovrdb
