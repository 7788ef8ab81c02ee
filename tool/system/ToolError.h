// The program's exit codes, and the one exception with which a command gives up.
#pragma once

#include <stdexcept>
#include <string>

namespace tovrtool {

// Part of the interface with scripts: append, never renumber. The table in `tovrdb --help` repeats it.
enum ExitCode : int {
  kDone = 0,
  kRefused = 1,        // the library answered with a code
  kUsage = 2,          // the command line does not say what to do
  kFileProblem = 3,    // a file is missing, exists already, cannot be read or written, or holds something else
  kKeyProblem = 4,     // no key, or the key does not open the file
  kPluginProblem = 5,  // the plug-in library cannot be loaded
  kBusy = 6,           // another program is using the file, which is as it was
  kInterrupted = 130   // ended by the user, as shells number it; nothing unfinished is left
};

// `what()` says what failed, on which thing, and what to do. It never holds a key or a payload.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace tovrtool
