#include "platform/FileSystem.h"

#include <cstdio>

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace tovr {

#if defined(_WIN32)

bool renameWithoutReplacing(const std::string& from, const std::string& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;  // this platform's rename refuses an existing target
}

#else

bool renameWithoutReplacing(const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
#endif
  // File systems without that flag: a second name is refused where one exists, and so never replaces either.
  if (::link(from.c_str(), to.c_str()) == 0) return ::unlink(from.c_str()) == 0;
  if (errno == EEXIST) return false;
  // File systems without hard links: the check and the rename are two steps, the best that is left.
  if (::access(to.c_str(), F_OK) == 0) {
    errno = EEXIST;
    return false;
  }
  return std::rename(from.c_str(), to.c_str()) == 0;
}

#endif

}  // namespace tovr
