// What every command gets, and how a command announces itself to the command line.
#pragma once

#include <functional>
#include <string>

#include "tool/system/StandardOutput.h"

namespace tovrtool {

struct GlobalOptions {
  std::string plugin;
  std::string keyFile;
  std::string log;
  bool verbose = false;
  bool quiet = false;  // no messages but those of failures, no progress
};

struct Context {
  const GlobalOptions& options;
  StandardOutput& output;
  int code = 0;  // the exit code of a command that has done its work; failures are thrown
};

// The command that the command line chose: each command's addition to the command line fills it when it is named.
struct Command {
  std::string what;  // "coef get wall.db": begins its messages
  std::function<void(Context&)> run;
};

}  // namespace tovrtool
