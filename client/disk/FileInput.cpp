#include "client/disk/FileInput.h"

#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/Paths.h"
#include "client/disk/Platform.h"

namespace tovrdb {
namespace {

constexpr std::size_t kLargest = std::size_t{1} << 31;
constexpr std::size_t kPiece = std::size_t{1} << 20;

std::vector<unsigned char> readAll(std::FILE* file, const std::string& name) {
  std::vector<unsigned char> bytes;
  std::size_t used = 0;
  std::size_t count = 0;
  do {
    bytes.resize(used + kPiece);
    count = std::fread(bytes.data() + used, 1, kPiece, file);
    used += count;
    if (used > kLargest) throw Error(kFileProblem, "{} is larger than any block (2 GiB)", name);
  } while (count == kPiece);
  if (std::ferror(file) != 0) throw Error(kFileProblem, "cannot read {}: {}", name, systemError());
  bytes.resize(used);
  return bytes;
}

}  // namespace

std::vector<unsigned char> readWholeFile(const std::string& path) {
  if (path == "-") return readAll(binaryStandardInput(), "standard input");
  std::error_code error;
  if (std::filesystem::is_directory(pathOf(path), error)) {
    throw Error(kFileProblem, "{} is a folder: give a file", path);
  }
  const FileHandle file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw Error(kFileProblem, "cannot read {}: {}", path, systemError());
  return readAll(file.get(), path);
}

}  // namespace tovrdb
