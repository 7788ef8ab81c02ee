// A new folder that goes, with all that is in it, when the object goes.
#pragma once

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

namespace tovrtest {

class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& place = std::filesystem::temp_directory_path())
      : path_(place / ("tovr-test-" + std::to_string(std::random_device{}()))) {
    if (!std::filesystem::create_directory(path_)) throw std::runtime_error("not a new folder: " + path_.string());
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tovrtest
