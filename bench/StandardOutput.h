// Keeps standard output for the results: what the library prints meanwhile is dropped.
#pragma once

#include <cstdio>

namespace tovrbench {

class StandardOutput {
 public:
  StandardOutput();
  ~StandardOutput();
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;
  std::FILE* stream() const { return stream_; }  // the standard output of the start

 private:
  std::FILE* stream_;
};

}  // namespace tovrbench
