// Buffers that hold plaintext or keys on their way, overwritten before their memory goes back.
#pragma once

#include <cstddef>
#include <vector>

namespace tovr {

// Overwrites bytes that nobody reads again, in a way that no compiler leaves out. Null with no size is allowed.
void wipe(void* bytes, std::size_t size);

struct WipedBuffer {
  WipedBuffer() = default;
  // What does not outgrow `capacity` leaves no copy behind on the way.
  explicit WipedBuffer(std::size_t capacity) { bytes.reserve(capacity); }
  WipedBuffer(const WipedBuffer&) = delete;
  WipedBuffer& operator=(const WipedBuffer&) = delete;
  ~WipedBuffer();

  std::vector<unsigned char> bytes;
};

}  // namespace tovr
