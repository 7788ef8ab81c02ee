#include "crypto/DESSchedule.h"

#include <algorithm>

#include "crypto/DESTables.h"
#include "crypto/WipedBuffer.h"

namespace tovr {
namespace {

// The registers C and D, as 56 bits.
std::uint64_t registersOf(const DESBlock& key) {
  std::uint64_t registers = 0;
  for (const unsigned bit : destables::kPermutedChoice1) {
    registers = registers << 1 | (key.bytes[(bit - 1) / 8] >> (7 - (bit - 1) % 8) & 1U);
  }
  return registers;
}

// Both by one bit to the left.
std::uint64_t rotated(std::uint64_t registers) {
  constexpr std::uint64_t kFirstBits = 0x80000008000000;
  return (registers & ~kFirstBits) << 1 | (registers & kFirstBits) >> 27;
}

std::uint64_t roundKey(std::uint64_t registers) {
  std::uint64_t key = 0;
  for (const unsigned bit : destables::kPermutedChoice2) key = key << 1 | (registers >> (56 - bit) & 1);
  return key;
}

}  // namespace

DESBlock DESBlock::firstOf(const void* bytes, std::size_t size) {
  DESBlock block;
  std::copy_n(static_cast<const unsigned char*>(bytes), std::min(size, sizeof block.bytes), block.bytes);
  return block;
}

DESSchedule::DESSchedule(const DESBlock& key) : rounds{} {
  std::uint64_t registers = registersOf(key);
  for (std::size_t round = 0; round < 16; ++round) {
    for (int turn = 0; turn < destables::kRotations[round]; ++turn) registers = rotated(registers);
    rounds[round] = roundKey(registers);
  }
}

DESSchedule::~DESSchedule() { wipe(rounds, sizeof rounds); }

}  // namespace tovr
