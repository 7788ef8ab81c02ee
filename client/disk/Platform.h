// Everything that the operating systems do differently: descriptors, terminals, new files, the program's own path.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>

#include "client/base/Error.h"

namespace tovrdb {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// Permissions of files and folders as POSIX numbers them; on Windows those of the folder around them count.
constexpr unsigned int kOwnerOnlyFile = 0600;

constexpr int kStandardInput = 0;
constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

// A write to a closed pipe, or beyond the size that files may have, becomes an error that the writer sees, instead of
// ending the process.
void ignoreBrokenPipes();

bool isTerminal(int descriptor);

// A line typed on the terminal at standard input, without echo, after `prompt` on standard error. An interrupt
// restores the terminal and throws Error; so does the end of the input. REQUIRES: isTerminal(kStandardInput).
std::string readWithoutEcho(const std::string& prompt);

// Standard input as bytes, without translation of line ends.
std::FILE* binaryStandardInput();

// A second descriptor of the same file as a stream of bytes; null when `descriptor` is closed.
FileHandle duplicateAsStream(int descriptor);

// The open descriptor that a path stands for ("/dev/stdout", "/proc/self/fd/3"); negative for any other path.
int descriptorNamed(const std::string& path);

// Makes `descriptor` write to the null device, to the end of a file (made if need be), or where another writes to.
// False, with errno set: nothing was changed.
bool redirectToNull(int descriptor);
bool redirectToEndOf(const std::string& path, int descriptor);
bool redirectTo(int target, int descriptor);

// A new file opened for writing bytes, which only its owner can read; null, with errno set, when `path` exists or
// cannot be made.
FileHandle createNew(const std::string& path);

// A new folder that only its owner can enter. False, with errno set, when `path` exists or cannot be made.
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

// What was written reaches the disk. False when that fails.
bool flushToDisk(std::FILE* file);

// The names of the files in a folder reach the disk, where the system has such an operation. False when that fails.
bool flushFolder(const std::string& folder);

// The same, and the files in it: all at once, where the system has such an operation, since each costs a wait.
bool flushWholeFolder(const std::string& folder);

// Which file a path leads to, also after a rename; empty if no file is there. Always empty on Windows: nobody replaces
// a file there that somebody has open.
std::string fileIdentity(const std::string& path);

#if defined(_WIN32)
constexpr bool kReplacesOpenFiles = false;
#else
constexpr bool kReplacesOpenFiles = true;
#endif

// Locks a range of bytes of a file, open for writing, against other programs until one of this program closes the file.
// False if another program holds a lock there. On Windows it locks nothing: an open file cannot be replaced there.
bool lockBytes(std::FILE* file, long long from, long long length);

// The text of errno.
std::string systemError();

// A call of the system failed and set errno: "WHAT: REASON", with kNoSpace on a full disk, kPipeClosed after the reader
// of a pipe has ended, else kFileProblem.
Error systemFailure(const std::string& what);
Error systemFailure(const std::string& what, const std::error_code& error);

// The folder of the running program; empty when the system does not tell.
std::string programFolder();

int processNumber();

}  // namespace tovrdb
