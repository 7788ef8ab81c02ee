// Keeps results and the library's own lines apart.
//
// The library prints to standard output. From construction to destruction that descriptor leads elsewhere (nowhere, a
// log file, standard error), and results go through a duplicate of the original one.
#pragma once

#include <cstddef>
#include <string>

#include "client/disk/Descriptors.h"

namespace tovrdb::tool {

class StandardOutput {
 public:
  // The library's lines are dropped until one of the two operations below is called.
  StandardOutput();
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;
  ~StandardOutput();

  // Appends the library's lines to a file. Throws Error if it cannot be opened.
  void logLibraryTo(const std::string& path);
  void showLibrary();

  // Results. Throw Error when they cannot be written: kPipeClosed after their reader has ended.
  void print(const std::string& text);
  void write(const void* bytes, std::size_t size);
  // Call before writing bytes that are not text: throws Error on a terminal.
  void refuseTerminal() const;

  // Throws Error unless everything written so far, results and log, has arrived.
  void finish();

 private:
  FileHandle results_;  // null when the program was started with standard output closed
  bool terminal_;
  std::string log_;
};

}  // namespace tovrdb::tool
