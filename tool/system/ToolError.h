// The program's exit codes, and the one exception with which a command gives up.
#pragma once

#include <fmt/core.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

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
  kConflict = 7,       // what is stored stands against it; nothing was written
  kInterrupted = 130   // ended by the user, as shells number it; nothing unfinished is left
};

// `what()` says what failed, on which thing, and what to do. It never holds a key or a payload.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  template <class First, class... More>
  ToolError(ExitCode code, fmt::format_string<First, More...> text, First&& first, More&&... more)
      : ToolError(code, fmt::format(text, std::forward<First>(first), std::forward<More>(more)...)) {}

  ExitCode code() const { return code_; }

  // Lines that a person reads before what(), where one is not enough.
  const std::vector<std::string>& details() const { return details_; }
  void setDetails(std::vector<std::string> details) { details_ = std::move(details); }

  // The status code with which the library refused; 0 where it was not asked.
  int status() const { return status_; }
  void setStatus(int status) { status_ = status; }

 private:
  ExitCode code_;
  int status_ = 0;
  std::vector<std::string> details_;
};

// The same failure, said with what it happened on: "wall.db: ...".
inline ToolError about(const std::string& what, const ToolError& error) {
  ToolError told(error.code(), what + ": " + error.what());
  told.setStatus(error.status());
  told.setDetails(error.details());
  return told;
}

}  // namespace tovrtool
