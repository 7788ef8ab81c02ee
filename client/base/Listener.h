// What a program hears from the client while it works.
#pragma once

#include <cstdint>
#include <string>

#include "client/base/Interrupt.h"

namespace tovrdb {

// Called on the thread that works; each operation may be ignored. None may throw.
class Listener {
 public:
  virtual ~Listener() = default;
  // Another program is using the file; it is waited for, `seconds` at most.
  virtual void onWait(unsigned int seconds) { static_cast<void>(seconds); }
  // Something that the person should know and that is not part of any result.
  virtual void onNote(const std::string& text) { static_cast<void>(text); }
  // `done` of `total` bytes of `task` are done; 0 at its beginning.
  virtual void onProgress(const std::string& task, std::uint64_t done, std::uint64_t total) {
    static_cast<void>(task), static_cast<void>(done), static_cast<void>(total);
  }
  // The task has ended, complete or not.
  virtual void onProgressEnd() {}
};

// From here on the calling thread's listener, which is not owned; null: nobody listens.
void setListener(Listener* listener);
// REQUIRES: the one that was set still lives.
Listener& listener();

// A long task: tells the listener how far it is, and is the point at which the task notices an interrupt.
class Progress {
 public:
  // `total` bytes are to be done.
  Progress(std::string task, std::uint64_t total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  // `bytes` more are done. Throws Error after an interrupt.
  void advance(std::uint64_t bytes);

 private:
  DeferredInterrupt interrupt_;
  std::string task_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
};

}  // namespace tovrdb
