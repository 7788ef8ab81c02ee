#include "tool/io/Terminal.h"

#include <cstdio>

#include "client/base/Interrupt.h"
#include "client/disk/FileInput.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <termios.h>
#include <unistd.h>

#include <csignal>
#endif

namespace tovrdb::tool {

#if defined(_WIN32)

namespace {

std::FILE* binaryStandardInput() {
  _setmode(kStandardInput, _O_BINARY);
  return stdin;
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

#else

namespace {

volatile std::sig_atomic_t interrupted = 0;  // by this signal

void noteInterrupt(int signal) { interrupted = signal; }

// While it lives, the terminal does not show what is typed, and an interrupt only ends a read.
class SilentTerminal {
 public:
  SilentTerminal() {
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;  // without SA_RESTART: read() returns EINTR
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

std::FILE* binaryStandardInput() { return stdin; }

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

#endif

std::vector<unsigned char> readInput(const std::string& path) {
  return path == "-" ? readStream(binaryStandardInput(), "standard input") : readWholeFile(path);
}

}  // namespace tovrdb::tool
