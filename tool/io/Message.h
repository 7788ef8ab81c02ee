// What the person at the terminal reads on standard error: messages, one line each, and the progress of long work.
#pragma once

#include <fmt/core.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/base/Text.h"

namespace tovrdb::tool {

// "tovrdb: TEXT", unless messages are silenced.
void message(const std::string& text);
template <class First, class... More>
void message(fmt::format_string<First, More...> text, First&& first, More&&... more) {
  message(fmt::format(text, std::forward<First>(first), std::forward<More>(more)...));
}
void silenceMessages();

// "tovrdb: TEXT", always: why the program fails. Long texts lose their middle.
void complain(const std::string& text);

// Part of the interface with scripts: append, never renumber. `tovrdb --help` and docs/exit-codes.md repeat it.
enum class ExitCode : int {
  kDone = 0,
  kRefused = 1,
  kUsage = 2,
  kFileProblem = 3,
  kKeyProblem = 4,
  kPluginProblem = 5,
  kBusy = 6,
  kConflict = 7,
  kDamaged = 8,
  kNoSpace = 9,
  // Ended by a signal, numbered as shells do (128 + the signal).
  kHungUp = 129,
  kInterrupted = 130,
  kPipeClosed = 141,
  kTerminated = 143
};
ExitCode exitCodeOf(ErrorKind kind);

// What failed, then what the person may do about it, by the options and commands of this program.
std::string messageOf(const Error& error);

// Shows progress as a bar, waiting and notes as messages. No bar is shown in a pipe, while messages are silenced, with
// NO_COLOR or TERM=dumb, and for little work.
class ProgressBar : public Listener {
 public:
  void onWait(unsigned int seconds) override;
  void onNote(const std::string& text) override;
  void onProgress(const std::string& task, std::uint64_t done, std::uint64_t total) override;
  void onProgressEnd() override;

 private:
  using Clock = std::chrono::steady_clock;
  bool shown_ = false;
  Clock::time_point next_;  // when to draw again
};

}  // namespace tovrdb::tool
