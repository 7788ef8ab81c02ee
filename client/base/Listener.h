// How a program follows what the client does while it works.
#pragma once

#include <cstdint>
#include <string>

#include "client/base/Interrupt.h"

namespace tovrdb {

// Called on the working thread. Every operation may be left as it is; none may throw.
class Listener {
 public:
  virtual ~Listener() = default;
  // Another program is using the file; the client waits for it, `seconds` at most.
  virtual void onWait(unsigned int seconds) { static_cast<void>(seconds); }
  // Something that the person should know but that is not part of a result.
  virtual void onNote(const std::string& text) { static_cast<void>(text); }
  // `done` of `total` bytes of `task` are done; 0 at its beginning.
  virtual void onProgress(const std::string& task, std::uint64_t done, std::uint64_t total) {
    static_cast<void>(task), static_cast<void>(done), static_cast<void>(total);
  }
  // The task has ended, completed or not.
  virtual void onProgressEnd() {}
};

// Sets the calling thread's listener, which is not owned; null: nobody listens.
void setListener(Listener* listener);
// The calling thread's listener. REQUIRES: if one was set, it still lives.
Listener& listener();

// A long task: reports to the listener, and is where the task notices an interrupt.
class Progress {
 public:
  // The task has `total` bytes to process.
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
