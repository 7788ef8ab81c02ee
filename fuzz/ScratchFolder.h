// A folder of the process's own, in memory where the system offers that, gone at the end.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "fuzz/Choices.h"
#include "fuzz/Target.h"

namespace tovrfuzz {

class ScratchFolder {
 public:
  ScratchFolder() : folder_(place() / ("tovr-fuzz-" + std::to_string(std::random_device{}()))) {
    require(std::filesystem::create_directory(folder_), "no fresh folder");
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  std::string path(const std::string& name) const { return (folder_ / name).string(); }

 private:
  static std::filesystem::path place() {
    const std::filesystem::path memory = "/dev/shm";
    return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
  }

  std::filesystem::path folder_;
};

inline void writeFile(const std::string& path, const Bytes& content) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  require(static_cast<bool>(file.flush()), "the scratch folder is full");
}

// Of a file that is not there: nothing.
inline Bytes contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

}  // namespace tovrfuzz
