// Finds the plug-in library.
#pragma once

#include <string>

namespace tovrdb {

// `given`, else TOVRDB_PLUGIN, else the first that exists: beside the program, in the library folder that belongs to
// it, in the build tree. Without any of them the bare file name, for the system's own search.
std::string pluginPath(const std::string& given);

}  // namespace tovrdb
