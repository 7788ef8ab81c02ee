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

  // Appends the library's lines to a file. Throws Error when it cannot be opened.
  void logLibraryTo(const std::string& path);
  void showLibrary();

  // Results. Throw Error when they cannot be written: kPipeClosed when nobody reads them any more.
  void print(const std::string& text);
  void write(const void* bytes, std::size_t size);
  // Where payloads are to go: throws Error on a terminal.
  void refuseTerminal() const;

  // Everything written so far has arrived, results and log. Throws Error where it has not.
  void finish();

 private:
  FileHandle results_;  // null when the program was started with standard output closed
  bool terminal_;
  std::string log_;
};

}  // namespace tovrdb::tool
