// The destination of a command's payload: a file, or standard output.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "client/disk/FileOutput.h"
#include "tool/io/StandardOutput.h"

namespace tovrdb::tool {

struct OutputOptions {
  std::string path;  // "-", or a name of it such as "/dev/stdout", is standard output
  bool force = false;
  unsigned int mode = kOwnerOnlyFile;  // of a file
};

class ByteOutput {
 public:
  // Throws Error if the destination cannot be written, and if it is `source`, the file that the bytes come from (if
  // any): before the work, not after.
  ByteOutput(StandardOutput& standard, const OutputOptions& options, const std::string& source);

  // Throws Error if the bytes are for a file and the disk has no room for so many, unless `force` was given.
  void requireRoom(double bytes) const;

  void write(const void* bytes, std::size_t size);
  void write(const std::string& text) { write(text.data(), text.size()); }
  void write(const std::vector<unsigned char>& bytes) { write(bytes.data(), bytes.size()); }
  // The file appears under its name; without a commit it never does.
  void commit();

 private:
  StandardOutput& standard_;
  bool force_;
  std::optional<FileOutput> file_;
};

}  // namespace tovrdb::tool
