// How a file is read on past its damage.
#pragma once

#include "tool/database/Session.h"
#include "tool/system/ToolError.h"

namespace tovrtool {

// Whether the error says nothing about the file: an interrupt, another program that keeps it busy.
bool isNoFault(const ToolError& error);

// From here on one state of the file is read, whoever else writes to it. After a page that could not be read the engine
// refuses every other until this is called.
void beginAgain(Session& session);

}  // namespace tovrtool
