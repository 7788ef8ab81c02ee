#include "platform/FileSystem.h"

#include <cstdio>

#if defined(_WIN32)
#include <windows.h>

#include <optional>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace tovr {

#if defined(_WIN32)

bool renameWithoutReplacing(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;  // this platform's rename refuses an existing target
}

namespace {

// What the system tells about an existing file or folder, opened by its narrow name as the standard streams do.
std::optional<BY_HANDLE_FILE_INFORMATION> informationOf(const std::string& path) {
  const HANDLE file = CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION information{};
  const bool told = GetFileInformationByHandle(file, &information) != 0;
  CloseHandle(file);
  return told ? std::optional(information) : std::nullopt;
}

}  // namespace

bool isSameFile(const std::string& a, const std::string& b) {
  const auto first = informationOf(a);
  const auto second = informationOf(b);
  return first && second && first->dwVolumeSerialNumber == second->dwVolumeSerialNumber &&
         first->nFileIndexHigh == second->nFileIndexHigh && first->nFileIndexLow == second->nFileIndexLow;
}

#else

bool renameWithoutReplacing(const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
#endif
  // File systems without that flag: link() never replaces an existing name either.
  if (::link(from.c_str(), to.c_str()) == 0) return ::unlink(from.c_str()) == 0;
  if (errno == EEXIST) return false;
  // File systems without hard links: the check and the rename are two steps, the best that is left.
  if (::access(to.c_str(), F_OK) == 0) {
    errno = EEXIST;
    return false;
  }
  return std::rename(from.c_str(), to.c_str()) == 0;
}

bool isSameFile(const std::string& a, const std::string& b) {
  struct stat first {};
  struct stat second {};
  return ::stat(a.c_str(), &first) == 0 && ::stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

#endif

}  // namespace tovr
