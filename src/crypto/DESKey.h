// A DES key made ready for use: its round keys, and the cipher with them. Immutable; safe on any thread.
//
// Source: FIPS 46-3 (DES), FIPS 81 (CBC).
#pragma once

#include <cstddef>
#include <cstdint>

#include "crypto/DESSchedule.h"
#include "crypto/Lanes.h"

namespace tovr {

// The round keys in the order of their use: the first two, and by what each other round's differ.
struct DESRounds {
  std::uint64_t first[2];
  std::uint64_t differences[16];
};

class DESKey {
 public:
  explicit DESKey(const DESBlock& key);
  ~DESKey();  // overwrites all of it
  DESKey(const DESKey&) = delete;
  DESKey& operator=(const DESKey&) = delete;

  bool isMadeOf(const DESBlock& key) const;

  // CBC over `size` bytes from `in`. `out` may be `in`; else they do not overlap.
  // encrypt: writes whole blocks, the last one filled with zeros.
  // decrypt: writes `size` bytes; a partial last block is read as if extended with zeros. Its time, some microseconds
  // and as much for every further batch of 128 blocks, tells nothing of key and data.
  void encryptCbc(const unsigned char* in, std::size_t size, unsigned char* out, DESBlock iv) const;
  void decryptCbc(const unsigned char* in, std::size_t size, unsigned char* out, DESBlock iv) const;

 private:
  DESBlock key_;
  DESRounds rounds_;
  NativeLanes::Lane lanes_[16 * 48];  // see ParallelDES
};

}  // namespace tovr
