#include "client/base/Listener.h"

#include <algorithm>
#include <utility>

namespace tovrdb {
namespace {

thread_local Listener* current = nullptr;

}  // namespace

void setListener(Listener* listener) { current = listener; }

Listener& listener() {
  static Listener nobody;
  return current != nullptr ? *current : nobody;
}

Progress::Progress(std::string task, std::uint64_t total) : task_(std::move(task)), total_(total) {
  listener().onProgress(task_, 0, total_);
}

Progress::~Progress() { listener().onProgressEnd(); }

void Progress::advance(std::uint64_t bytes) {
  done_ += std::min(bytes, total_ - done_);
  interrupt_.check();
  listener().onProgress(task_, done_, total_);
}

}  // namespace tovrdb
