#include "client/disk/DatabaseFiles.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

#include "client/base/Error.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

// The bytes that SQLite's file format reserves for locks: one pending, one reserved, 510 shared.
constexpr long long kFirstLockByte = 0x40000000;
constexpr long long kLockBytes = 512;

constexpr std::uintmax_t kLogHeader = 32;  // bytes of a write-ahead log before its first frame

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

bool endsIn(const std::string& text, const std::string& suffix) {
  return text.size() > suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// The engine ends a change by deleting its journal, emptying it, or overwriting the header with zeros.
bool journalHoldsChange(const std::string& journal) {
  std::ifstream file(pathOf(journal), std::ios::binary);
  const int first = file.get();
  return !file.is_open() || (file && first != 0);
}

bool holdsChange(const std::string& database, const std::string& suffix) {
  std::error_code error;
  if (suffix == kJournalSuffix) return journalHoldsChange(database + suffix);
  return suffix == kWalSuffix && fs::file_size(pathOf(database + suffix), error) > kLogHeader;
}

}  // namespace

void requireNoCompanion(const std::string& path) {
  const std::string name = lowerCase(path);  // some file systems ignore case
  for (const std::string suffix : kCompanionSuffixes) {
    if (!endsIn(name, suffix)) continue;
    throw Error(kInvalid,
                "names that end in {} are the database engine's own: it would take {} for a part of the database "
                "{}, and delete it; give another name",
                suffix, path, path.substr(0, path.size() - suffix.size()));
  }
}

void removeIdleCompanions(const std::string& database) {
  for (const std::string suffix : kCompanionSuffixes) {
    std::error_code error;
    const std::string companion = database + suffix;
    if (!fs::exists(pathOf(companion), error)) continue;
    if (!holdsChange(database, suffix)) {
      fs::remove(pathOf(companion), error);
    } else if (fs::exists(pathOf(database), error)) {
      throw Error(kFileProblem,
                  "{0} holds an unfinished change of a program that was killed while it wrote to the database {1}",
                  companion, database)
          .suggest(Remedy::kRecoverFile);
    } else {
      throw Error(kFileProblem,
                  "{} belongs to a database {} that is no longer there: move it back to its database or delete it, "
                  "and try again",
                  companion, database);
    }
  }
}

DatabaseLock::DatabaseLock(const std::string& database) : file_(std::fopen(database.c_str(), "r+b")) {
  if (file_ == nullptr || lockBytes(file_.get(), kFirstLockByte, kLockBytes)) return;
  throw Error(kBusy, "{} was not replaced: another program is using it; try again when it has finished", database);
}

}  // namespace tovrdb
