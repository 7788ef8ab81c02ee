#include "client/disk/Platform.h"

#include <cerrno>
#include <cstring>

#if defined(_WIN32)
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

// EFBIG: beyond the size that the file system or `ulimit -f` allows.
ErrorKind kindOf(const std::error_code& error) {
  if (error == std::errc::broken_pipe) return kPipeClosed;
#if !defined(_WIN32)
  if (error.value() == EDQUOT) return kNoSpace;
#endif
  return error == std::errc::no_space_on_device || error == std::errc::file_too_large ? kNoSpace : kFileProblem;
}

}  // namespace

std::string fileNameOf(const std::string& path) { return textOf(pathOf(path).filename()); }

std::string absolutePath(const std::string& path) {
  std::error_code error;
  return textOf(fs::absolute(pathOf(path), error));
}

std::string folderOf(const std::string& path) { return textOf(pathOf(absolutePath(path)).parent_path()); }

std::string systemError() { return std::strerror(errno); }

Error systemFailure(const std::string& what) { return systemFailure(what, {errno, std::generic_category()}); }

Error systemFailure(const std::string& what, const std::error_code& error) {
  const ErrorKind kind = kindOf(error);
  return {kind, "{}: {}{}", what, error.message(), kind == kNoSpace ? "; free some space and try again" : ""};
}

#if defined(_WIN32)

FileHandle createNew(const std::string& path) {
  const int opened = _open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
  return FileHandle(opened < 0 ? nullptr : _fdopen(opened, "wb"));
}

bool createOwnFolder(const std::string& path) { return _mkdir(path.c_str()) == 0; }

// Another handle that may delete the folder is refused while one is open that does not share deletion.
FolderLock::FolderLock(const std::string& folder, IfTaken /*ifTaken*/) {
  const HANDLE opened =
      CreateFileA(folder.c_str(), DELETE | FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (opened != INVALID_HANDLE_VALUE) handle_ = reinterpret_cast<std::intptr_t>(opened);
}

FolderLock::~FolderLock() {
  if (held()) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

bool flushToDisk(std::FILE* file) { return std::fflush(file) == 0 && _commit(_fileno(file)) == 0; }

bool flushFolder(const std::string&) { return true; }  // the file system's journal keeps names

bool flushWholeFolder(const std::string& folder) {
  std::error_code error;
  bool done = true;
  for (const auto& entry : fs::directory_iterator(pathOf(folder), error)) {
    const FileHandle file(_wfopen(entry.path().c_str(), L"r+b"));
    done = done && file != nullptr && flushToDisk(file.get());
  }
  return done && !error;
}

std::string fileIdentity(const std::string&) { return {}; }

bool lockBytes(std::FILE*, long long, long long) { return true; }

std::string programFolder() {
  char path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  if (length == 0 || length == MAX_PATH) return {};
  return textOf(pathOf(path).parent_path());
}

int processNumber() { return _getpid(); }

#else

FileHandle createNew(const std::string& path) {
  const int opened = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnlyFile);
  return FileHandle(opened < 0 ? nullptr : fdopen(opened, "wb"));
}

bool createOwnFolder(const std::string& path) { return mkdir(path.c_str(), 0700) == 0; }

// A lock of flock(), which knows nothing of those of fcntl() that the engine takes.
FolderLock::FolderLock(const std::string& folder, IfTaken ifTaken) {
  const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (opened < 0) return;
  struct stat status = {};
  const bool own =
      fstat(opened, &status) == 0 && status.st_uid == geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
  if (own && flock(opened, LOCK_EX | (ifTaken == IfTaken::kWait ? 0 : LOCK_NB)) == 0) {
    handle_ = opened;
  } else {
    close(opened);
  }
}

FolderLock::~FolderLock() {
  if (held()) close(static_cast<int>(handle_));
}

bool flushToDisk(std::FILE* file) {
  return std::fflush(file) == 0 && (fsync(fileno(file)) == 0 || errno == EINVAL);  // EINVAL: not that kind of file
}

namespace {

bool flushOpened(const std::string& folder, int (*flush)(int)) {
  const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (opened < 0) return false;
  const bool done = flush(opened) == 0 || errno == EINVAL;  // EINVAL: not that kind of file system
  close(opened);
  return done;
}

}  // namespace

bool flushFolder(const std::string& folder) { return flushOpened(folder, fsync); }

bool flushWholeFolder(const std::string& folder) { return flushOpened(folder, syncfs); }

std::string fileIdentity(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return {};
  return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

bool lockBytes(std::FILE* file, long long from, long long length) {
  struct flock lock = {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = from;
  lock.l_len = length;
  return fcntl(fileno(file), F_SETLK, &lock) == 0 || (errno != EACCES && errno != EAGAIN);
}

std::string programFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? std::string() : textOf(program.parent_path());
}

int processNumber() { return getpid(); }

#endif

}  // namespace tovrdb
