// The cipher beside libcrypto's, over any key, initialisation vector, length, alignment, and cut into two pieces.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/des.h>

#include "crypto/DESKey.h"
#include "fuzz/Choices.h"
#include "fuzz/Target.h"

namespace tovrfuzz {
namespace {

using tovr::DESBlock;
using Operation = void (tovr::DESKey::*)(const unsigned char*, std::size_t, unsigned char*, DESBlock) const;

constexpr std::size_t kLongest = 2300;  // two batches and a bit

DESBlock blockOf(Choices& choices) {
  const Bytes bytes = choices.take(8);
  return DESBlock::firstOf(bytes.data(), bytes.size());
}

Bytes chainedByLibcrypto(int direction, DESBlock key, DESBlock iv, Bytes blocks) {
  DES_key_schedule schedule;
  DES_set_key_unchecked(&key.bytes, &schedule);
  DES_ncbc_encrypt(blocks.data(), blocks.data(), static_cast<long>(blocks.size()), &schedule, &iv.bytes, direction);
  return blocks;
}

// In a buffer where the bytes begin at `shift`, in place or not. The pieces are cut at the block `cut`.
Bytes chained(const tovr::DESKey& key, Operation operation, const DESBlock& iv, const Bytes& input, std::size_t shift,
              std::size_t cut, bool inPlace) {
  Bytes in(shift);
  in.insert(in.end(), input.begin(), input.end());
  Bytes out = inPlace ? in : Bytes(in.size());
  const bool enciphers = operation == &tovr::DESKey::encryptCbc;
  const std::size_t first = cut * 8;
  const DESBlock lastIn = first > 0 ? DESBlock::firstOf(in.data() + shift + first - 8, 8) : iv;
  unsigned char* const to = out.data() + shift;
  const unsigned char* const from = inPlace ? to : in.data() + shift;
  (key.*operation)(from, first, to, iv);
  const DESBlock between = enciphers && first > 0 ? DESBlock::firstOf(to + first - 8, 8) : lastIn;
  (key.*operation)(from + first, input.size() - first, to + first, between);
  out.erase(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(shift));
  return out;
}

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  Choices choices(data, size);
  const bool inPlace = choices.flag();
  const std::size_t shift = choices.below(17);
  const std::size_t blocks = choices.below(choices.isOneIn(16) ? kLongest / 8 : 24);
  const std::size_t cut = choices.below(blocks + 1);
  const unsigned seed = choices.byte();
  const DESBlock key = blockOf(choices);
  const DESBlock iv = blockOf(choices);
  Bytes input = choices.take(8 * blocks);
  const Bytes rest = noise(8 * blocks - input.size(), seed);
  input.insert(input.end(), rest.begin(), rest.end());

  const tovr::DESKey ready(key);
  require(chained(ready, &tovr::DESKey::encryptCbc, iv, input, shift, cut, inPlace) ==
              chainedByLibcrypto(DES_ENCRYPT, key, iv, input),
          "enciphered otherwise than by libcrypto");
  require(chained(ready, &tovr::DESKey::decryptCbc, iv, input, shift, cut, inPlace) ==
              chainedByLibcrypto(DES_DECRYPT, key, iv, input),
          "deciphered otherwise than by libcrypto");
  return 0;
}
