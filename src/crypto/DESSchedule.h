// The round keys of a DES key. Source: FIPS 46-3. Key bytes are used raw: no parity adjustment, no weak-key test.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tovr {

struct DESBlock {
  unsigned char bytes[8] = {};

  // The first block of `bytes`, extended with zeros.
  static DESBlock firstOf(const void* bytes, std::size_t size);
};

struct DESSchedule {
  explicit DESSchedule(const DESBlock& key);
  ~DESSchedule();  // overwrites them
  DESSchedule(const DESSchedule&) = delete;
  DESSchedule& operator=(const DESSchedule&) = delete;

  std::uint64_t rounds[16];  // in the order of enciphering; 48 bits each, the first the most significant
};

}  // namespace tovr
