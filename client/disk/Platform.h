// What operating systems do differently about files: paths, new files and folders, locks, flushing, identity.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "client/base/Error.h"

namespace tovrdb {

// Paths are UTF-8 texts. Only these two functions convert them for std::filesystem: on Windows, built by MinGW, it
// would take the bytes of a text for characters of another encoding.
inline std::filesystem::path pathOf(const std::string& text) { return std::filesystem::u8path(text); }
inline std::string textOf(const std::filesystem::path& path) { return path.u8string(); }

// "wall.db" of "/a/wall.db".
std::string fileNameOf(const std::string& path);

// The absolute path, and the absolute path of the folder that it is in. Empty if the current folder is gone.
std::string absolutePath(const std::string& path);
std::string folderOf(const std::string& path);

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// Permissions of files and folders, as POSIX numbers them; Windows uses those of the folder that they are in.
constexpr unsigned int kOwnerOnlyFile = 0600;

// A new file opened for writing bytes, which only its owner can read; null, with errno set, if `path` exists or cannot
// be created.
FileHandle createNew(const std::string& path);

// Creates a folder that only its owner can enter. False, with errno set, if `path` exists or cannot be created.
bool createOwnFolder(const std::string& path);

// Tells other processes that a folder of createOwnFolder() is in use, as long as this lives. The lock ends with the
// process, however that ends. On Windows the end of the lock removes the folder if it is empty.
class FolderLock {
 public:
  enum class IfTaken { kWait, kGiveUp };
  // Takes the lock, unless another process has it, the folder is not the user's own, or the file system has no locks.
  FolderLock(const std::string& folder, IfTaken ifTaken);
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

  bool held() const { return handle_ != kNone; }

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t handle_ = kNone;  // a descriptor; on Windows a HANDLE
};

// Writes a file's contents through to the disk. False when that fails.
bool flushToDisk(std::FILE* file);

// Writes the names in a folder through to the disk. False when that fails; true if the system has no such operation.
bool flushFolder(const std::string& folder);

// The same, and the files in it: all at once if the system has such an operation, since each costs a wait.
bool flushWholeFolder(const std::string& folder);

// Identifies the file that a path leads to, also after a rename; empty if there is no file. Always empty on Windows,
// where an open file cannot be replaced.
std::string fileIdentity(const std::string& path);

#if defined(_WIN32)
constexpr bool kReplacesOpenFiles = false;
#else
constexpr bool kReplacesOpenFiles = true;
#endif

// Locks a range of bytes of a file, open for writing, against other programs until this program closes the file, by
// whichever handle. False if another program holds a lock there. Locks nothing on Windows, where an open file cannot be
// replaced.
bool lockBytes(std::FILE* file, long long from, long long length);

// The text of errno.
std::string systemError();

// A call of the system failed and set errno: "WHAT: REASON". The kind is kNoSpace on a full disk, kPipeClosed after the
// reader of a pipe has ended, else kFileProblem.
Error systemFailure(const std::string& what);
Error systemFailure(const std::string& what, const std::error_code& error);

// The folder of the running program; empty if the system does not tell.
std::string programFolder();

int processNumber();

}  // namespace tovrdb
