// Why a change of a file is refused before anything is written, as data: what conflicts and what the person may do.
#pragma once

#include <string>
#include <vector>

#include "client/base/ToolError.h"

namespace tovrtool {

// What the person may ask for instead.
struct Remedies {
  bool force = false;
  bool patch = false;
  bool replace = false;
  bool beside = false;
  bool newScreen = false;
};

struct Objection {
  ExitCode code = kConflict;  // kRefused if the library would refuse as well, kUsage for contradicting arguments
  int status = 0;             // with which the library would refuse
  Remedies remedies;
  std::string text;
};

// Throws ToolError unless there are none: a single one says it all, several are its details, a line each. `outcome`
// says what became of the change: "nothing was stored".
void requireNone(const std::vector<Objection>& objections, const std::string& outcome);

}  // namespace tovrtool
