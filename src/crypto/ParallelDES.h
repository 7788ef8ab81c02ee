// CBC deciphering, many blocks at once.
//
// The blocks of a batch are turned into 64 lanes: lane i holds bit i of every block. A round is then pure logic between
// lanes, the same for all blocks: a permutation is only which lane is read, a bit of the key a lane of ones or zeros,
// an S-box its circuit. This is known as bitslicing (E. Biham, "A Fast New DES Implementation in Software", 1997). It
// serves deciphering alone, since there each block needs only ciphertext: the block itself, and the one before it.
//
// No address and no branch depends on key or data, so the time that it takes tells nothing of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "crypto/DESSchedule.h"
#include "crypto/DESTables.h"
#include "crypto/Lanes.h"
#include "crypto/SBoxCircuits.h"

namespace tovr {

template <class Lanes>
class ParallelDES {
 public:
  using Lane = typename Lanes::Lane;

  static constexpr std::size_t kBatchSize = 64 * sizeof(Lane);  // bytes
  static constexpr std::size_t kKeyLanes = std::size_t{16} * 48;

  // The bits of the round keys in the order of their use, as ones or zeros.
  static void makeKeyLanes(const DESSchedule& schedule, Lane (&keys)[kKeyLanes]) {
    for (std::size_t i = 0; i < kKeyLanes; ++i) {
      keys[i] = Lanes::fill(0 - (schedule.rounds[15 - i / 48] >> (47 - i % 48) & 1));
    }
  }

  // Holds plaintext after decipher(): the caller wipes it.
  explicit ParallelDES(const Lane* keys) : keys_(keys) {}

  // One batch. `chain`: the cipher block before it, then its own last one. `out` may be `in`; else they do not overlap.
  void decipher(const unsigned char* in, unsigned char* out, unsigned char (&chain)[8]) {
    std::memcpy(lanes_, in, kBatchSize);
    transpose();
    runRounds();
    transpose();
    unsigned char last[8];
    std::memcpy(last, in + kBatchSize - sizeof last, sizeof last);
    for (std::size_t i = 64; i-- > 1;) store(i, load(in + i * sizeof(Lane) - 8), out);  // backwards, for in place
    unsigned char first[sizeof(Lane)];
    std::memcpy(first, chain, 8);
    std::memcpy(first + 8, in, sizeof(Lane) - 8);
    store(0, load(first), out);
    std::memcpy(chain, last, sizeof last);
  }

 private:
  static Lane load(const unsigned char* bytes) {
    Lane lane;
    std::memcpy(&lane, bytes, sizeof lane);
    return lane;
  }

  void store(std::size_t i, Lane before, unsigned char* out) {
    const Lane plain = Lanes::differ(lanes_[i], before);
    std::memcpy(out + i * sizeof plain, &plain, sizeof plain);
  }

  // Bit j of word i becomes bit i of word j, for every 64 words: squares of 32, 16, ... bits beside the diagonal change
  // places.
  void transpose() {
    exchangeAll<32>();
    exchangeAll<16>();
    exchangeAll<8>();
    exchangeAll<4>();
    exchangeAll<2>();
    exchangeAll<1>();
  }

  template <int Size>
  void exchangeAll() {
    for (int i = 0; i < 64; i += 2 * Size) {
      for (int j = i; j < i + Size; ++j) exchange<Size>(lanes_[j], lanes_[j + Size]);
    }
  }

  template <int Size>
  static void exchange(Lane& upper, Lane& lower) {
    const Lane low = Lanes::fill(~std::uint64_t{0} / ((std::uint64_t{1} << Size) + 1));
    const Lane changed = Lanes::both(Lanes::differ(Lanes::down(upper, Size), lower), low);
    lower = Lanes::differ(lower, changed);
    upper = Lanes::differ(upper, Lanes::up(changed, Size));
  }

  // The lane of a bit of the blocks, numbered as published, where words are loaded as the processor stores them.
  static constexpr std::size_t laneOf(std::size_t bit) {
#if defined(TOVR_BIG_ENDIAN)
    return 64 - bit;
#else
    return (bit - 1) / 8 * 8 + 7 - (bit - 1) % 8;
#endif
  }

  void runRounds() {
    for (std::size_t i = 0; i < 64; ++i) halves_[i] = lanes_[laneOf(destables::kInitialPermutation[i])];
    Lane* const left = halves_;
    Lane* const right = halves_ + 32;
    for (std::size_t round = 0; round < 16; round += 2) {
      runRound(left, right, keys_ + round * 48, std::make_index_sequence<8>());
      runRound(right, left, keys_ + round * 48 + 48, std::make_index_sequence<8>());
    }
    for (std::size_t i = 0; i < 64; ++i) lanes_[laneOf(destables::kInitialPermutation[i])] = halves_[(i + 32) % 64];
  }

  template <std::size_t... Box>
  static void runRound(Lane* changed, const Lane* read, const Lane* key, std::index_sequence<Box...> /*boxes*/) {
    (substitute<Box>(changed, read, key, std::make_index_sequence<sboxes::kCircuit<Box>.size>()), ...);
  }

  template <std::size_t Box, std::size_t... Index>
  static void substitute(Lane* changed, const Lane* read, const Lane* key, std::index_sequence<Index...> /*gates*/) {
    Lane wires[sboxes::kFirstGate + sizeof...(Index)];
    input<Box>(wires, read, key, std::make_index_sequence<sboxes::kInputs>());
    wires[sboxes::kOnes] = Lanes::fill(~std::uint64_t{0});
    (run<Box, Index>(wires), ...);
    output<Box>(changed, wires, std::make_index_sequence<sboxes::kOutputs>());
  }

  template <std::size_t Box, std::size_t... Index>
  static void input(Lane* wires, const Lane* read, const Lane* key, std::index_sequence<Index...> /*inputs*/) {
    ((wires[Index] = Lanes::differ(read[destables::kExpansion[6 * Box + Index] - 1], key[6 * Box + Index])), ...);
  }

  template <std::size_t Box, std::size_t Index>
  static void run(Lane* wires) {
    constexpr sboxes::Gate kGate = sboxes::kCircuit<Box>.gates[Index];
    const Lane a = wires[kGate.first];
    const Lane b = wires[kGate.second];
    Lane& wire = wires[sboxes::kFirstGate + Index];
    if constexpr (kGate.kind == sboxes::GateKind::kAnd) wire = Lanes::both(a, b);
    if constexpr (kGate.kind == sboxes::GateKind::kOr) wire = Lanes::either(a, b);
    if constexpr (kGate.kind == sboxes::GateKind::kXor) wire = Lanes::differ(a, b);
    if constexpr (kGate.kind == sboxes::GateKind::kAndNot) wire = Lanes::butNot(a, b);
  }

  template <std::size_t Box, std::size_t... Index>
  static void output(Lane* changed, const Lane* wires, std::index_sequence<Index...> /*outputs*/) {
    ((changed[permuted(4 * Box + Index)] =
          Lanes::differ(changed[permuted(4 * Box + Index)], wires[sboxes::kCircuit<Box>.outputs[Index]])),
     ...);
  }

  // Where P puts an output of the S-boxes, both from 0.
  static constexpr std::size_t permuted(std::size_t output) {
    std::size_t place = 0;
    while (destables::kPermutation[place] != output + 1) ++place;
    return place;
  }

  const Lane* keys_;
  Lane lanes_[64];
  Lane halves_[64];
};

}  // namespace tovr
