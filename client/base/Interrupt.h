// Ctrl-C and other requests to end: unfinished files are removed, and the program ends.
//
// Usually the program ends at once, after the registered files and folders are removed. While a DeferredInterrupt lives
// the interrupt is only noted, and the work gives up at its next check(), so that transactions are rolled back and
// whole folders are removed. After noteCompletion() it is only noted, too: the result is kept, and the program goes on
// to report it. In both cases a second interrupt ends the program at once.
#pragma once

#include <string>

#include "client/base/Error.h"

namespace tovrdb {

// The kind of error with which work ends after this signal.
ErrorKind kindOfSignal(int signal);

// Call once, before the first file is created.
void handleInterrupts();

// Call when the result has its name, or is committed.
void noteCompletion();

// An interrupt removes this file, or this folder if nothing but such files is in it, as long as this lives.
class InterruptibleFile {
 public:
  // REQUIRES: an absolute path. An empty one is ignored.
  explicit InterruptibleFile(const std::string& path);
  InterruptibleFile(const InterruptibleFile&) = delete;
  InterruptibleFile& operator=(const InterruptibleFile&) = delete;
  ~InterruptibleFile();

 private:
  int slot_;  // negative: too many at a time, or the path is too long; an interrupt then leaves the file
};

class DeferredInterrupt {
 public:
  DeferredInterrupt();
  DeferredInterrupt(const DeferredInterrupt&) = delete;
  DeferredInterrupt& operator=(const DeferredInterrupt&) = delete;
  ~DeferredInterrupt();

  // Throws Error after an interrupt: kInterrupted, or the kind of the signal that asked the program to end.
  void check() const;
};

}  // namespace tovrdb
