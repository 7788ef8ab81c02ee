// What the person at the terminal sees of long work: a bar, what is waited for, and notes, on standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "client/base/Listener.h"

namespace tovrdb::tool {

// No bar is shown in a pipe, while messages are silenced, with NO_COLOR or TERM=dumb, and for little work.
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
