// A bar on standard error for long work, on terminals only, and the point at which such work notices an interrupt.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "client/base/Interrupt.h"

namespace tovrtool {

class Progress {
 public:
  // `total` bytes are to be done. Nothing is shown in a pipe, where messages are silenced, with NO_COLOR or TERM=dumb,
  // and for little work.
  Progress(const std::string& what, std::uint64_t total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  // Wipes the bar.
  ~Progress();

  // `bytes` more are done. Throws ToolError after an interrupt.
  void advance(std::uint64_t bytes);

 private:
  void draw();

  using Clock = std::chrono::steady_clock;

  DeferredInterrupt interrupt_;
  std::string what_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  bool shown_;
  Clock::time_point next_;  // when to draw again
};

}  // namespace tovrtool
