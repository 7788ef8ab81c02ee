#include "tool/database/FaultyFile.h"

namespace tovrtool {

bool isNoFault(const ToolError& error) { return isEnded(error.code()) || error.code() == kBusy; }

void beginAgain(Session& session) {
  session.connection().exec("rollback");  // fails when there is no transaction
  session.beginReading();
}

}  // namespace tovrtool
