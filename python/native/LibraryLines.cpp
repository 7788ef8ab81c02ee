#include "native/LibraryLines.h"

#include <cstdio>
#include <mutex>
#include <utility>

#if !defined(__GLIBC__)
#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif
#endif

namespace tovrdb::python {
namespace {

struct Buffer {
  std::mutex mutex;  // another thread may print through C at any time
  bool kept = false;
  std::string text;
};

// Never destroyed: other threads may print until the process ends.
Buffer& buffer() {
  static Buffer* const only = new Buffer;
  return *only;
}

#if defined(__GLIBC__)

ssize_t append(void* /*cookie*/, const char* bytes, std::size_t size) {
  const std::lock_guard<std::mutex> lock(buffer().mutex);
  if (buffer().kept) buffer().text.append(bytes, size);
  return static_cast<ssize_t>(size);
}

std::FILE* collector() {
  static std::FILE* const stream = fopencookie(nullptr, "w", {nullptr, append, nullptr, nullptr});
  return stream;
}

#endif

}  // namespace

#if defined(__GLIBC__)

LibraryLines::LibraryLines() : before_(stdout) {
  if (collector() != nullptr) stdout = collector();
}

LibraryLines::~LibraryLines() {
  std::fflush(stdout);
  stdout = before_;
}

#else

LibraryLines::LibraryLines() : before_(duplicateAsStream(kStandardOutput)) {
  std::fflush(stdout);
  redirectToNull(kStandardOutput);
}

LibraryLines::~LibraryLines() {
  std::fflush(stdout);
  if (before_ != nullptr) redirectTo(fileno(before_.get()), kStandardOutput);
}

#endif

void LibraryLines::keep(bool kept) {
  const std::lock_guard<std::mutex> lock(buffer().mutex);
  buffer().kept = kept;
}

std::string LibraryLines::take() {
  const std::lock_guard<std::mutex> lock(buffer().mutex);
  return std::exchange(buffer().text, {});
}

}  // namespace tovrdb::python
