// Deciphering is ParallelDES's. A chain is enciphered one block after the other, arranged for a short way from a round
// to the next:
//
// - A half is kept as E expands it: eight groups of six bits, a byte each, the first the most significant.
// - S-box, P and the next E are one table of such halves. E only copies bits, so halves still add up by XOR.
// - A half carries the round key that it meets next. With each round it is exchanged for the one after by their
//   difference, known long before.
// - IP and its inverse turn a matrix of 8 by 8 bits, by shifts. A chain leaves them out on its way from block to block.
#include "crypto/DESKey.h"

#include <algorithm>
#include <cstring>

#include "crypto/DESTables.h"
#include "crypto/ParallelDES.h"
#include "crypto/SBoxCircuits.h"
#include "crypto/WipedBuffer.h"

namespace tovr {
namespace {

using Decipherer = ParallelDES<NativeLanes>;

constexpr std::size_t kBlock = 8;

struct RoundTable {
  std::uint64_t of[8][64] = {};  // by S-box and its input
};

// Where input `index` of the 48 of a round lies in an expanded half.
constexpr unsigned placeOf(std::size_t index) { return static_cast<unsigned>(8 * (7 - index / 6) + 5 - index % 6); }

constexpr RoundTable makeRoundTable() {
  RoundTable table;
  for (std::size_t index = 0; index < 48; ++index) {
    const std::size_t output = destables::kPermutation[destables::kExpansion[index] - 1] - 1U;
    for (unsigned v = 0; v < 64; ++v) {
      const std::uint64_t bit = sboxes::substitute(output / 4, v) >> (3 - output % 4) & 1;
      table.of[output / 4][v] |= bit << placeOf(index);
    }
  }
  return table;
}

constexpr RoundTable kRound = makeRoundTable();

// `left` with the round's function of `right`. No two boxes have a bit in common, so a sum, an OR and a XOR of what
// they give are the same; in turn, they keep the compiler from making one long chain of them.
std::uint64_t mix(std::uint64_t left, std::uint64_t right) {
  const auto box = [right](int index) { return kRound.of[index][right >> (56 - 8 * index) & 0xFF]; };
  return ((left ^ (box(7) + box(6))) ^ (box(0) + box(1))) ^ ((box(2) + box(3)) | (box(4) + box(5)));
}

template <int Distance>
std::uint64_t exchange(std::uint64_t rows, std::uint64_t mask) {
  const std::uint64_t changed = (rows >> Distance ^ rows) & mask;
  return rows ^ changed ^ changed << Distance;
}

// Bit c of byte r becomes bit r of byte c.
std::uint64_t transpose(std::uint64_t rows) {
  rows = exchange<7>(rows, 0x00AA00AA00AA00AA);
  rows = exchange<14>(rows, 0x0000CCCC0000CCCC);
  return exchange<28>(rows, 0x00000000F0F0F0F0);
}

constexpr std::uint64_t kEvenBytes = 0x00FF00FF00FF00FF;

// E of a half, which is given as the even bytes. Four bits become six with their neighbours, the first and the last
// too.
std::uint64_t expand(std::uint64_t half) {
  const std::uint64_t fours = (half | half << 4) & 0x0F0F0F0F0F0F0F0F;
  const std::uint64_t before = fours >> 8 | fours << 56;
  const std::uint64_t after = fours << 8 | fours >> 56;
  return fours << 1 | (before << 5 & 0x2020202020202020) | (after >> 3 & 0x0101010101010101);
}

std::uint64_t shrink(std::uint64_t expanded) {
  const std::uint64_t fours = expanded >> 1 & 0x0F0F0F0F0F0F0F0F;
  return (fours | fours >> 4) & kEvenBytes;
}

// Words whose first byte is the least significant, whatever the processor's own order.
std::uint64_t littleEndian(std::uint64_t word) {
#if defined(TOVR_BIG_ENDIAN)
  return __builtin_bswap64(word);
#else
  return word;
#endif
}

std::uint64_t load(const unsigned char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return littleEndian(word);
}

void store(std::uint64_t word, unsigned char* bytes) {
  word = littleEndian(word);
  std::memcpy(bytes, &word, sizeof word);
}

// A round key in the places of an expanded half.
std::uint64_t placed(std::uint64_t roundKey) {
  std::uint64_t bytes = 0;
  for (int box = 0; box < 8; ++box) bytes |= (roundKey >> 6 * box & 0x3F) << 8 * box;
  return bytes;
}

DESRounds roundsOf(const DESSchedule& schedule) {
  const auto key = [&](int round) { return round < 16 ? placed(schedule.rounds[round]) : 0; };
  DESRounds rounds = {{key(0), key(1)}, {}};
  for (int i = 0; i < 16; ++i) rounds.differences[i] = key(i) ^ key(i + 2);
  return rounds;
}

struct Halves {
  std::uint64_t left;
  std::uint64_t right;
};

// IP and E of a block, and back.
Halves open(std::uint64_t block) {
  const std::uint64_t rows = transpose(block);
  return {expand(rows & kEvenBytes), expand(rows >> 8 & kEvenBytes)};
}

std::uint64_t close(Halves halves) { return transpose(shrink(halves.left) | shrink(halves.right) << 8); }

// The sixteen rounds between IP and its inverse. Halves come one by one: compilers would make a vector of a pair, and
// the way there and back is long.
Halves cross(std::uint64_t left, std::uint64_t right, const DESRounds& keys) {
  left ^= keys.first[1];
  right ^= keys.first[0];
  for (const std::uint64_t difference : keys.differences) {
    const std::uint64_t mixed = mix(left, right);
    left = right ^ difference;
    right = mixed;
  }
  return {right, left};
}

}  // namespace

DESKey::DESKey(const DESBlock& key) : key_(key) {
  const DESSchedule schedule(key);
  rounds_ = roundsOf(schedule);
  Decipherer::makeKeyLanes(schedule, lanes_);
}

DESKey::~DESKey() { wipe(this, sizeof *this); }

bool DESKey::isMadeOf(const DESBlock& key) const { return std::memcmp(key_.bytes, key.bytes, kBlock) == 0; }

void DESKey::encryptCbc(const unsigned char* in, std::size_t size, unsigned char* out, DESBlock iv) const {
  const Halves start = open(load(iv.bytes));
  std::uint64_t left = start.left;
  std::uint64_t right = start.right;
  for (std::size_t at = 0; at < size; at += kBlock) {
    const bool isWhole = size - at >= kBlock;
    const Halves plain = open(load(isWhole ? in + at : DESBlock::firstOf(in + at, size - at).bytes));
    const Halves enciphered = cross(plain.left ^ left, plain.right ^ right, rounds_);
    store(close(enciphered), out + at);
    left = enciphered.left;
    right = enciphered.right;
  }
}

void DESKey::decryptCbc(const unsigned char* in, std::size_t size, unsigned char* out, DESBlock iv) const {
  constexpr std::size_t kBatch = Decipherer::kBatchSize;
  constexpr std::size_t kAhead = 4 * kBatch;  // more than a page is beyond what the processor foresees
  Decipherer decipherer(lanes_);
  const std::size_t rest = size % kBatch;
  for (; size > rest; in += kBatch, out += kBatch, size -= kBatch) {
    if (size >= kAhead + kBatch) {
      prefetch(in + kAhead, kBatch);
      prefetch(out + kAhead, kBatch);
    }
    decipherer.decipher(in, out, iv.bytes);
  }
  if (rest > 0) {
    unsigned char batch[kBatch] = {};
    std::copy_n(in, rest, batch);
    decipherer.decipher(batch, batch, iv.bytes);
    std::copy_n(batch, rest, out);
    wipe(batch, sizeof batch);
  }
  wipe(&decipherer, sizeof decipherer);
}

}  // namespace tovr
