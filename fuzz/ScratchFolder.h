// A folder of the process's own, in memory where the system offers that, gone at the end.
#pragma once

#include <filesystem>
#include <string>

#include "tests/support/Files.h"
#include "tests/support/TemporaryFolder.h"

namespace tovrfuzz {

using tovrtest::contentOf;
using tovrtest::writeFile;

class ScratchFolder {
 public:
  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

 private:
  static std::filesystem::path place() {
    const std::filesystem::path memory = "/dev/shm";
    return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
  }

  tovrtest::TemporaryFolder folder_{place()};
};

}  // namespace tovrfuzz
