#include "client/disk/FileInput.h"

#include <algorithm>
#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/Platform.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = std::size_t{1} << 31;
constexpr std::size_t kPiece = std::size_t{1} << 20;

// Whether `path` begins with all of `folder`.
bool begins(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

}  // namespace

std::vector<unsigned char> readStream(std::FILE* stream, const std::string& name) {
  std::vector<unsigned char> bytes;
  std::size_t used = 0;
  std::size_t count = 0;
  do {
    bytes.resize(used + kPiece);
    count = std::fread(bytes.data() + used, 1, kPiece, stream);
    used += count;
    if (used > kLargestFile) throw Error(kFileProblem, "{} is larger than any block (2 GiB)", name);
  } while (count == kPiece);
  if (std::ferror(stream) != 0) throw Error(kFileProblem, "cannot read {}: {}", name, systemError());
  bytes.resize(used);
  return bytes;
}

std::vector<unsigned char> readWholeFile(const std::string& path) {
  std::error_code error;
  if (fs::is_directory(pathOf(path), error)) throw Error(kFileProblem, "{} is a folder: give a file", path);
  const FileHandle file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr) throw Error(kFileProblem, "cannot read {}: {}", path, systemError());
  return readStream(file.get(), path);
}

Json readJson(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(pathOf(path), error);
  if (!error) requireJsonSize(size, path);  // before the bytes take memory
  return parseJson(readWholeFile(path), path);
}

std::string pathInside(const std::string& folder, const std::string& name) {
  const fs::path relative = pathOf(name);
  const bool up = std::find(relative.begin(), relative.end(), "..") != relative.end();
  const bool zero = name.find('\0') != std::string::npos;
  if (name.empty() || zero || up || relative.has_root_path()) {
    throw Error(kFileProblem, "the name '{}' cannot be used: it leads out of {}", name, folder);
  }
  std::error_code error;
  const fs::path root = fs::canonical(pathOf(folder), error);
  const fs::path file = error ? fs::path() : fs::canonical(root / relative, error);
  if (error) throw Error(kFileProblem, "the file '{}' in {}: {}", name, folder, error.message());
  if (!begins(file, root) || !fs::is_regular_file(file, error)) {
    throw Error(kFileProblem, "the name '{}' cannot be used: it is not a file in {}", name, folder);
  }
  return textOf(file);
}

}  // namespace tovrdb
