// What every fuzz target has: its entry, which libFuzzer and Replay.cpp call, and its way to report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace tovrfuzz {

// A finding where `holds` is false: ends the process, with the reason on standard error.
inline void require(bool holds, const char* reason) {
  if (holds) return;
  std::fprintf(stderr, "finding: %s\n", reason);
  std::abort();
}

}  // namespace tovrfuzz
