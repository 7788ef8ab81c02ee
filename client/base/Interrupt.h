// What Ctrl-C (and a request to end) does: unfinished files disappear, and the program ends.
//
// Usually the program ends at once, after the registered files and folders are removed. While a DeferredInterrupt lives
// the interrupt is only noted, and the work gives up at its next check(), so that transactions are rolled back and
// whole folders are removed. After noteCompletion() it is only noted, too: what is done stays done, and the program
// goes on to tell so. A second interrupt ends the program at once in both cases.
#pragma once

#include <string>

#include "client/base/Error.h"

namespace tovrdb {

// The kind of error with which work ends that this signal interrupts.
ErrorKind kindOfSignal(int signal);

// Call once, before the first file is made.
void handleInterrupts();

// Call when the result has its name, or is committed.
void noteCompletion();

// A file, or a folder that holds nothing but such files, that an interrupt removes as long as this lives.
class InterruptibleFile {
 public:
  explicit InterruptibleFile(const std::string& path);
  InterruptibleFile(const InterruptibleFile&) = delete;
  InterruptibleFile& operator=(const InterruptibleFile&) = delete;
  ~InterruptibleFile();

 private:
  int slot_;  // negative: too many at a time, or too long a path; an interrupt then leaves the file
};

class DeferredInterrupt {
 public:
  DeferredInterrupt();
  DeferredInterrupt(const DeferredInterrupt&) = delete;
  DeferredInterrupt& operator=(const DeferredInterrupt&) = delete;
  ~DeferredInterrupt();

  // Throws Error after an interrupt: kInterrupted, or the code of the signal that asked the program to end.
  void check() const;
};

}  // namespace tovrdb
