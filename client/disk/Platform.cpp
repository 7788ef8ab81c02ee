#include "client/disk/Platform.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "client/base/Interrupt.h"
#include "client/disk/Paths.h"

#if defined(_WIN32)
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#endif

namespace tovrdb {

namespace {

// EFBIG: beyond the size that the file system or `ulimit -f` allows.
ErrorKind codeOf(const std::error_code& error) {
  if (error == std::errc::broken_pipe) return kPipeClosed;
#if !defined(_WIN32)
  if (error.value() == EDQUOT) return kNoSpace;
#endif
  return error == std::errc::no_space_on_device || error == std::errc::file_too_large ? kNoSpace : kFileProblem;
}

}  // namespace

std::string systemError() { return std::strerror(errno); }

Error systemFailure(const std::string& what) { return systemFailure(what, {errno, std::generic_category()}); }

Error systemFailure(const std::string& what, const std::error_code& error) {
  const ErrorKind code = codeOf(error);
  return {code, "{}: {}{}", what, error.message(), code == kNoSpace ? "; free some space and try again" : ""};
}

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

void ignoreBrokenPipes() {}

bool isTerminal(int descriptor) { return _isatty(descriptor) != 0; }

std::string readWithoutEcho(const std::string& prompt) {
  const HANDLE console = GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  GetConsoleMode(console, &mode);
  std::fputs(prompt.c_str(), stderr);
  SetConsoleMode(console, mode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
  std::string line;
  int character = std::getchar();
  for (; character != EOF && character != '\n'; character = std::getchar())
    line.push_back(static_cast<char>(character));
  SetConsoleMode(console, mode);
  std::fputs("\n", stderr);
  if (character == EOF) throw Error(kKeyProblem, "no key was typed");
  return line;
}

std::FILE* binaryStandardInput() {
  _setmode(kStandardInput, _O_BINARY);
  return stdin;
}

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
  for (const auto& entry : std::filesystem::directory_iterator(pathOf(folder), error)) {
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

namespace {

volatile std::sig_atomic_t interrupted = 0;  // by this signal

void noteInterrupt(int signal) { interrupted = signal; }

// While it lives, the terminal shows nothing of what is typed and an interrupt only ends a read.
class SilentTerminal {
 public:
  SilentTerminal() {
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;  // without SA_RESTART: read() comes back with EINTR
    for (int i = 0; i < 2; ++i) sigaction(kSignals[i], &action, &before_[i]);
    tcgetattr(kStandardInput, &shown_);
    termios hidden = shown_;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(kStandardInput, TCSAFLUSH, &hidden);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;
  ~SilentTerminal() {
    tcsetattr(kStandardInput, TCSAFLUSH, &shown_);
    for (int i = 0; i < 2; ++i) sigaction(kSignals[i], &before_[i], nullptr);
  }

 private:
  static constexpr int kSignals[2] = {SIGINT, SIGTERM};
  struct sigaction before_[2] = {};
  termios shown_ = {};
};

bool redirectOpened(int opened, int descriptor) {
  if (opened < 0) return false;
  if (opened == descriptor) return true;  // it was closed, and the lowest free number went to the file
  const bool done = dup2(opened, descriptor) >= 0;
  close(opened);
  return done;
}

constexpr int kMostLinks = 40;  // as the system's own limit

// Negative where it is no descriptor's number.
int numberIn(const std::string& text) {
  const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  return digits && !text.empty() && text.size() < 9 ? std::stoi(text) : -1;
}

}  // namespace

void ignoreBrokenPipes() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool isTerminal(int descriptor) { return isatty(descriptor) == 1; }

std::string readWithoutEcho(const std::string& prompt) {
  std::string line;
  char character = 0;
  ssize_t count = 0;
  interrupted = 0;
  {
    const SilentTerminal silent;
    std::fputs(prompt.c_str(), stderr);
    while (interrupted == 0 && (count = read(kStandardInput, &character, 1)) == 1 && character != '\n') {
      line.push_back(character);
    }
  }
  std::fputs("\n", stderr);
  if (interrupted != 0) throw Error(kindOfSignal(interrupted), "interrupted: nothing was done");
  if (count != 1) throw Error(kKeyProblem, "no key was typed");
  return line;
}

std::FILE* binaryStandardInput() { return stdin; }

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
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::string() : textOf(program.parent_path());
}

int processNumber() { return getpid(); }

#endif

}  // namespace tovrdb
