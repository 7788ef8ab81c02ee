#include "PeakMemory.h"

#include <fstream>
#include <string>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace tovrbench {
namespace {

std::size_t statusBytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(field, 0) == 0) return std::stoul(line.substr(field.size())) * 1024;
  }
  return 0;
}

}  // namespace

std::size_t peakMemoryOf(const std::function<void()>& work) {
#if defined(__GLIBC__)
  malloc_trim(0);  // memory that was freed but kept would hide what the work takes
#endif
  std::ofstream("/proc/self/clear_refs") << "5";  // resets the high-water mark
  const std::size_t before = statusBytes("VmRSS:");
  work();
  const std::size_t peak = statusBytes("VmHWM:");
  return peak > before ? peak - before : 0;
}

}  // namespace tovrbench
