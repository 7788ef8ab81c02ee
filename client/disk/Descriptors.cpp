#include "client/disk/Descriptors.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tovrdb {

#if defined(_WIN32)

namespace {

bool redirectOpened(int opened, int descriptor) {
  if (opened < 0) return false;
  if (opened == descriptor) return true;
  const bool done = _dup2(opened, descriptor) == 0;
  _close(opened);
  return done;
}

}  // namespace

FileHandle duplicateAsStream(int descriptor) {
  const int copy = _dup(descriptor);
  if (copy < 0) return nullptr;
  _setmode(copy, _O_BINARY);
  return FileHandle(_fdopen(copy, "wb"));
}

int descriptorNamed(const std::string&) { return -1; }

bool redirectToNull(int descriptor) { return redirectOpened(_open("NUL", _O_WRONLY), descriptor); }

bool redirectToEndOf(const std::string& path, int descriptor) {
  return redirectOpened(_open(path.c_str(), _O_WRONLY | _O_CREAT | _O_APPEND, _S_IREAD | _S_IWRITE), descriptor);
}

bool redirectTo(int target, int descriptor) { return _dup2(target, descriptor) == 0; }

#else

namespace {

constexpr int kMostLinks = 40;  // the system's own limit

bool redirectOpened(int opened, int descriptor) {
  if (opened < 0) return false;
  if (opened == descriptor) return true;  // it was closed, and the file got the lowest free number
  const bool done = dup2(opened, descriptor) >= 0;
  close(opened);
  return done;
}

// Negative if the text is not a descriptor's number.
int numberIn(const std::string& text) {
  const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  return digits && !text.empty() && text.size() < 9 ? std::stoi(text) : -1;
}

}  // namespace

FileHandle duplicateAsStream(int descriptor) {
  const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, kStandardError + 1);
  return FileHandle(copy < 0 ? nullptr : fdopen(copy, "wb"));
}

int descriptorNamed(const std::string& path) {
  std::error_code error;
  const auto own = std::filesystem::canonical("/proc/self/fd", error);
  std::filesystem::path name = std::filesystem::absolute(path, error);
  for (int links = 0; links < kMostLinks && !error; ++links) {
    const auto folder = std::filesystem::canonical(name.parent_path(), error);
    if (error) return -1;
    if (folder == own) return numberIn(name.filename().string());
    name = folder / std::filesystem::read_symlink(name, error);
  }
  return -1;
}

bool redirectToNull(int descriptor) { return redirectOpened(open("/dev/null", O_WRONLY), descriptor); }

bool redirectToEndOf(const std::string& path, int descriptor) {
  return redirectOpened(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666), descriptor);
}

bool redirectTo(int target, int descriptor) { return dup2(target, descriptor) >= 0; }

#endif

}  // namespace tovrdb
