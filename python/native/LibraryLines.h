// Keeps the library's own lines out of the interpreter's standard output.
//
// The library prints to C's stream `stdout`. While an object of this lives, that stream is a buffer of ours; the
// descriptor, and with it what other threads print through Python, stays as it is. Where the C library does not let its
// stream be exchanged (not glibc), the descriptor itself leads nowhere meanwhile and no line is kept.
#pragma once

#include <string>

#include "client/disk/Platform.h"

namespace tovrdb::python {

class LibraryLines {
 public:
  // REQUIRES: no other one lives.
  LibraryLines();
  LibraryLines(const LibraryLines&) = delete;
  LibraryLines& operator=(const LibraryLines&) = delete;
  ~LibraryLines();

  // Whether lines are kept for take(), or dropped; from here on.
  static void keep(bool kept);
  // What was printed since the last call.
  static std::string take();

 private:
#if defined(__GLIBC__)
  std::FILE* before_;
#else
  FileHandle before_;
#endif
};

}  // namespace tovrdb::python
