// How much more memory a piece of work holds at its peak than before it began.
#pragma once

#include <cstddef>
#include <functional>

namespace tovrbench {

// Bytes of the process's resident set (Linux: the kernel's own high-water mark, reset before the work; 0 elsewhere).
std::size_t peakMemoryOf(const std::function<void()>& work);

}  // namespace tovrbench
