#include "client/base/Progress.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "client/base/Message.h"
#include "client/disk/Platform.h"

namespace tovrtool {
namespace {

constexpr std::uint64_t kLittleWork = std::uint64_t{1} << 21;  // bytes that take less time than a look at a bar
constexpr std::size_t kBarWidth = 32;
constexpr std::chrono::milliseconds kRedraw{100};

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool wanted() {
  const char* terminal = std::getenv("TERM");
  const bool dumb = terminal != nullptr && std::string(terminal) == "dumb";
  return !messagesAreSilent() && !isSet("NO_COLOR") && !dumb && isTerminal(kStandardError);
}

}  // namespace

Progress::Progress(const std::string& what, std::uint64_t total)
    : what_(printable(what)), total_(total), shown_(total >= kLittleWork && wanted()) {
  if (shown_) draw();
}

Progress::~Progress() {
  if (shown_) std::fputs("\r\x1b[K", stderr);
}

void Progress::advance(std::uint64_t bytes) {
  done_ += std::min(bytes, total_ - done_);
  interrupt_.check();
  if (shown_ && (done_ == total_ || Clock::now() >= next_)) draw();
}

void Progress::draw() {
  const double part = static_cast<double>(done_) / static_cast<double>(total_);
  const auto full = static_cast<std::size_t>(part * static_cast<double>(kBarWidth));
  const std::string bar = std::string(full, '#') + std::string(kBarWidth - full, '.');
  std::fprintf(stderr, "\r%s [%s] %3d%%\x1b[K", what_.c_str(), bar.c_str(), static_cast<int>(part * 100));
  std::fflush(stderr);
  next_ = Clock::now() + kRedraw;
}

}  // namespace tovrtool
