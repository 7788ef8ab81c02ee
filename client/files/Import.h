// Reads the folder that `tovrdb export` writes back into a database. It may have been made by anybody.
#pragma once

#include <string>

#include "client/base/Json.h"
#include "client/session/Session.h"

namespace tovrdb {

// The manifest of a folder, known to be of this format and to have the nine tables' lists of rows. Throws Error.
Json readManifest(const std::string& folder);

// Makes the nine tables, and fills them with the rows of the manifest and the payloads of its folder. Throws Error;
// no row is stored then. REQUIRES: `manifest` is from readManifest, and the session's database is empty.
void importFolder(Session& session, const std::string& folder, const Json& manifest);

}  // namespace tovrdb
