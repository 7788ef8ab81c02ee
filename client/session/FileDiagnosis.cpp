#include "client/session/FileDiagnosis.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "client/disk/Platform.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

struct Magic {
  const char* bytes;
  const char* what;
};

constexpr Magic kMagics[] = {
    {"PK\x03\x04", "a ZIP archive"},
    {"\x1f\x8b\x08", "a gzip archive"},
    {"\x93NUMPY", "a NumPy array"},
    {"\x89PNG", "a PNG picture"},
    {"%PDF", "a PDF document"},
    {"\x7f"
     "ELF",
     "a program"},
};

std::string beginningOf(const std::string& path, std::size_t count) {
  std::ifstream file(pathOf(path), std::ios::binary);
  std::string bytes(count, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(count));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return bytes;
}

bool isText(const std::string& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte >= 0x20 && byte != 0x7F) || byte == '\n' || byte == '\r' || byte == '\t';
  });
}

// Encrypted bytes look random: one in 256 is zero.
bool isMostlyZero(const std::string& bytes) {
  const auto zeros = std::count(bytes.begin(), bytes.end(), '\0');
  return zeros > static_cast<std::ptrdiff_t>(bytes.size() / 8);
}

// Empty if the size is a whole number of pages.
std::string oddSize(const std::string& path, std::int64_t pageSize) {
  const auto size = static_cast<std::int64_t>(fs::file_size(pathOf(path)));
  if (pageSize <= 0 || size % pageSize == 0) return {};
  return fmt::format("its {} bytes are not a whole number of pages of {} bytes", size, pageSize);
}

// For a file that the key does not open.
Error diagnoseUnreadable(const std::string& path, const std::string& key, std::int64_t pageSize) {
  const std::string start = beginningOf(path, 512);
  for (const Magic& magic : kMagics) {
    if (start.rfind(magic.bytes, 0) != 0) continue;
    return {kFileProblem, "it is not an encrypted database: it begins like {}", magic.what};
  }
  if (isText(start)) return {kFileProblem, "it is not a database: it begins like a text"};
  if (isMostlyZero(start)) {
    return {kDamaged,
            "it begins mostly with zeros, as no encrypted page does: it is not a database, or its first page was "
            "erased; restore a copy"};
  }
  const std::string odd = oddSize(path, pageSize);
  if (!odd.empty()) {
    return {
        kDamaged,
        "{}: it is truncated, or not a database. Compare its size with the original's; if they are equal, try other "
        "keys",
        odd};
  }
  if (key.rfind("\xEF\xBB\xBF", 0) == 0) {
    return {
        kKeyProblem,
        "26: the key is wrong: it begins with a byte order mark, which some editors put before a text. Save the key "
        "file as UTF-8 without one"};
  }
  return {
      kKeyProblem,
      "26: the key is wrong, or the first page is damaged (encrypted, the two look alike). Try the key that the file "
      "was made with, all of its characters; if that is certain, restore a copy. A file that an engine with other "
      "cipher settings made looks the same"};
}

// For a file whose first page the key opens, but which the engine calls damaged.
Error diagnoseDamaged(const std::string& path, std::int64_t pageSize) {
  const std::string odd = oddSize(path, pageSize);
  return {kDamaged, "the key fits, but the file is {}; restore a copy",
          odd.empty() ? "truncated or damaged" : "truncated: " + odd};
}

}  // namespace

void requireDatabaseFile(const std::string& path) {
  std::error_code error;  // opening a missing file would create it
  const fs::file_status status = fs::status(pathOf(path), error);
  if (!fs::exists(status)) {
    throw Error(kFileProblem, "there is no such file").suggest(Remedy::kCreateFile);
  }
  if (!fs::is_regular_file(status)) throw Error(kFileProblem, "it is not a file");
  if (!std::ifstream(pathOf(path), std::ios::binary)) {
    throw Error(kFileProblem, "the file cannot be read; check its permissions");
  }
  constexpr std::string_view kPlainDatabase = "SQLite format 3";
  const std::string start = beginningOf(path, kPlainDatabase.size());
  if (start.empty()) throw Error(kFileProblem, "the file is empty (0 bytes); it never was a database");
  if (start == kPlainDatabase) {
    throw Error(kFileProblem, "it is an SQLite database, but not an encrypted one");
  }
}

Error diagnosed(const Error& error, const std::string& path, const std::string& key, std::int64_t pageSize) {
  if (error.status() != kNotADatabaseStatus && error.status() != kMalformedStatus) return error;
  Error diagnosis =
      error.status() == kNotADatabaseStatus ? diagnoseUnreadable(path, key, pageSize) : diagnoseDamaged(path, pageSize);
  return diagnosis.setStatus(error.status());
}

}  // namespace tovrdb
