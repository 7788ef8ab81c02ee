// What every command gets, and how a command announces itself to the command line.
#pragma once

#include <functional>
#include <string>

#include "tool/StandardOutput.h"

namespace tovrtool {

struct GlobalOptions {
  std::string plugin;
  std::string keyFile;
  std::string log;
  bool verbose = false;
};

struct Context {
  const GlobalOptions& options;
  StandardOutput& output;
};

// The command that the command line chose: each command's addition to the command line fills it when it is named.
struct Command {
  std::string what;  // "coef get wall.db": begins its messages
  std::function<void(Context&)> run;
};

}  // namespace tovrtool
