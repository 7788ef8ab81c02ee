// The codes of the engine and of the library as what people read.
#pragma once

#include <string>

#include "storage/IDBOperate.h"

namespace tovrtool {

// Another program is using the file: nothing is wrong with it.
bool isBusy(int code);

// Throws ToolError with `where`, the code, its meaning, the engine's own words where it has any, and `advice`, unless
// `code` is 0.
void requireOk(tovr::IDBOperate& connection, int code, const std::string& where = "", const std::string& advice = "");

}  // namespace tovrtool
