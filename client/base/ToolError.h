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
  kRefused = 1,        // the library refused: what was asked for is not stored, or the engine failed
  kUsage = 2,          // the command line does not say what to do
  kFileProblem = 3,    // a file is missing, exists already, cannot be read or written, or holds something else
  kKeyProblem = 4,     // no key, or the key does not open the file
  kPluginProblem = 5,  // the plug-in library cannot be loaded
  kBusy = 6,           // another program is using the file, or changed it meanwhile; try again
  kConflict = 7,       // the command conflicts with stored data; nothing was written
  kDamaged = 8,        // the database file, or data in it, is damaged
  kNoSpace = 9,        // the disk is full, or a quota or a limit of file sizes is reached
  // Ended by a signal, numbered as shells do (128 + the signal); nothing unfinished is left.
  kHungUp = 129,
  kInterrupted = 130,
  kPipeClosed = 141,  // the reader of the output has ended, as `head` does; no message
  kTerminated = 143
};

// The work was ended from outside, which says nothing about the file.
inline bool isEnded(ExitCode code) { return code >= kHungUp; }

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
