// Everything that the operating systems do differently: descriptors, terminals, new files, the program's own path.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace tovrtool {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

enum class Readers {
  kAsUsual,
  kOwner  // nobody else, where the system has such permissions; on Windows the folder's count
};

constexpr int kStandardInput = 0;
constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

// A write to a closed pipe, or beyond the size that files may have, becomes an error that the writer sees, instead of
// ending the process.
void ignoreBrokenPipes();

bool isTerminal(int descriptor);

// A line typed on the terminal at standard input, without echo, after `prompt` on standard error. An interrupt
// restores the terminal and throws ToolError; so does the end of the input. REQUIRES: isTerminal(kStandardInput).
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

// A new file opened for writing bytes; null, with errno set, when `path` exists or cannot be made.
FileHandle createNew(const std::string& path, Readers readers = Readers::kAsUsual);

// What was written reaches the disk. False when that fails.
bool flushToDisk(std::FILE* file);

// The names of the files in a folder reach the disk, where the system has such an operation. False when that fails.
bool flushFolder(const std::string& folder);

// The same, and the files in it: all at once, where the system has such an operation, since each costs a wait.
bool flushWholeFolder(const std::string& folder);

// The text of errno.
std::string systemError();

// The folder of the running program; empty when the system does not tell.
std::string programFolder();

int processNumber();

}  // namespace tovrtool
