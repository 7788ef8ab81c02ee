#include "client/base/Interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "client/base/Error.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace tovrdb {
namespace {

constexpr int kSlots = 16;
constexpr std::size_t kLongestPath = 4096;

// Read by the handler, which may run between any two instructions: a path is complete before its slot is taken.
struct Slot {
  std::atomic<bool> taken{false};
  char path[kLongestPath] = {};
};

Slot slots[kSlots];
std::atomic<int> deferrals{0};
std::atomic<bool> completed{false};
std::atomic<int> noted{0};  // the signal

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "a signal handler must not take locks");

void removeFile(const char* path) {
#if defined(_WIN32)
  DeleteFileA(path);
#else
  unlink(path);  // std::remove is not async-signal-safe
#endif
}

void removeFolder(const char* path) {
#if defined(_WIN32)
  RemoveDirectoryA(path);
#else
  rmdir(path);
#endif
}

// Whether the interrupt is only noted; otherwise everything registered is removed, and the program must end.
bool onlyNoted(int signal) {
  if ((deferrals > 0 || completed) && noted.exchange(signal) == 0) return true;
  for (void (*remove)(const char*) : {removeFile, removeFolder}) {
    for (const Slot& slot : slots) {
      if (slot.taken) remove(slot.path);
    }
  }
  return false;
}

#if defined(_WIN32)

BOOL WINAPI onConsoleEvent(DWORD) { return onlyNoted(SIGINT) ? TRUE : FALSE; }

#else

void onSignal(int signal) {
  if (onlyNoted(signal)) return;
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

#endif

}  // namespace

#if defined(_WIN32)

void handleInterrupts() { SetConsoleCtrlHandler(onConsoleEvent, TRUE); }

#else

void handleInterrupts() {
  struct sigaction action = {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before = {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);  // nohup ignores SIGHUP on purpose
  }
}

#endif

ErrorKind kindOfSignal(int signal) {
  if (signal == SIGTERM) return kTerminated;
#if !defined(_WIN32)
  if (signal == SIGHUP) return kHungUp;
#endif
  return kInterrupted;
}

void noteCompletion() { completed = true; }

InterruptibleFile::InterruptibleFile(const std::string& path) : slot_(-1) {
  if (path.empty() || path.size() >= kLongestPath) return;
  for (int i = 0; i < kSlots && slot_ < 0; ++i) {
    if (slots[i].taken) continue;
    std::memcpy(slots[i].path, path.c_str(), path.size() + 1);
    slots[i].taken = true;
    slot_ = i;
  }
}

InterruptibleFile::~InterruptibleFile() {
  if (slot_ >= 0) slots[slot_].taken = false;
}

DeferredInterrupt::DeferredInterrupt() { ++deferrals; }

DeferredInterrupt::~DeferredInterrupt() { --deferrals; }

void DeferredInterrupt::check() const {
  const int signal = noted;
  if (signal == 0) return;
  throw Error(kindOfSignal(signal), "{}: nothing unfinished is left",
              signal == SIGINT ? "interrupted" : "ended by a signal");
}

}  // namespace tovrdb
