#include "tool/io/ProgressBar.h"

#include <cstdio>
#include <cstdlib>

#include "tool/io/Message.h"
#include "tool/io/Terminal.h"

namespace tovrdb::tool {
namespace {

constexpr std::uint64_t kLittleWork = std::uint64_t{1} << 21;  // bytes; no bar is shown below this size
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

void draw(const std::string& task, double part) {
  const auto full = static_cast<std::size_t>(part * static_cast<double>(kBarWidth));
  const std::string bar = std::string(full, '#') + std::string(kBarWidth - full, '.');
  std::fprintf(stderr, "\r%s [%s] %3d%%\x1b[K", printable(task).c_str(), bar.c_str(), static_cast<int>(part * 100));
  std::fflush(stderr);
}

}  // namespace

void ProgressBar::onWait(unsigned int seconds) {
  if (isTerminal(kStandardError)) message("another program is using the file; waiting for it, {} s at most", seconds);
}

void ProgressBar::onNote(const std::string& text) { message("note: {}", text); }

void ProgressBar::onProgress(const std::string& task, std::uint64_t done, std::uint64_t total) {
  if (done == 0) shown_ = total >= kLittleWork && wanted();
  if (!shown_ || (done != 0 && done != total && Clock::now() < next_)) return;
  draw(task, static_cast<double>(done) / static_cast<double>(total));
  next_ = Clock::now() + kRedraw;
}

void ProgressBar::onProgressEnd() {
  if (shown_) std::fputs("\r\x1b[K", stderr);
  shown_ = false;
}

}  // namespace tovrdb::tool
