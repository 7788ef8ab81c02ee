// Keeps the library's own lines out of the interpreter's standard output.
//
// The library prints to C's stream `stdout`. While an object of this class exists, that stream is our buffer; the
// descriptor, to which Python prints in other threads, is not touched. Only glibc lets a program exchange the stream:
// with other C libraries the descriptor is redirected to the null device instead, and no line is kept.
#pragma once

#include <string>

#include "client/disk/Descriptors.h"

namespace tovrdb::python {

class LibraryLines {
 public:
  // REQUIRES: no other object of this class exists.
  LibraryLines();
  LibraryLines(const LibraryLines&) = delete;
  LibraryLines& operator=(const LibraryLines&) = delete;
  ~LibraryLines();

  // Whether lines printed from now on are kept for take() or dropped.
  static void keep(bool kept);
  // Returns the lines kept since the last call.
  static std::string take();

 private:
#if defined(__GLIBC__)
  std::FILE* before_;
#else
  FileHandle before_;
#endif
};

}  // namespace tovrdb::python
