#include "crypto/DESBase.h"

#define OPENSSL_SUPPRESS_DEPRECATED  // single DES is deprecated since OpenSSL 3.0; the file format needs it
#include <openssl/des.h>

#include <algorithm>
#include <cstdint>

#include "crypto/WipedBuffer.h"

namespace tovr {
namespace {

using Bytes = DESBase::Bytes;

// One cipher block that can be copied and returned: DES_cblock is a plain array.
struct Block {
  DES_cblock bytes = {};
};

constexpr std::size_t kBlockSize = DESBase::kBlockSize;

static_assert(sizeof(DES_cblock) == kBlockSize);

// The first block of `bytes`, extended with zeros.
Block firstBlock(const unsigned char* bytes, std::size_t length) {
  Block block{};
  std::copy_n(bytes, std::min(length, kBlockSize), block.bytes);
  return block;
}

// The round keys, from which the key itself can be told.
struct KeySchedule {
  explicit KeySchedule(const Bytes& key) {
    Block block = firstBlock(key.data(), key.size());
    DES_set_key_unchecked(&block.bytes, &rounds);
    wipe(block.bytes, kBlockSize);
  }
  KeySchedule(const KeySchedule&) = delete;
  KeySchedule& operator=(const KeySchedule&) = delete;
  ~KeySchedule() { wipe(&rounds, sizeof rounds); }

  DES_key_schedule rounds;
};

// libcrypto advances the initialisation vector, so consecutive calls with the same `iv` continue one chain.
void cbc(const unsigned char* input, unsigned char* output, std::size_t length, KeySchedule& schedule, Block& iv,
         int direction) {
  DES_ncbc_encrypt(input, output, static_cast<long>(length), &schedule.rounds, &iv.bytes, direction);
}

Block ecb(const unsigned char* input, KeySchedule& schedule, int direction) {
  Block in = firstBlock(input, kBlockSize);
  Block out{};
  DES_ecb_encrypt(&in.bytes, &out.bytes, &schedule.rounds, direction);
  return out;
}

constexpr std::size_t wholeBlocks(std::size_t length) { return length / kBlockSize * kBlockSize; }

bool tooLong(const Bytes& input) { return input.size() > std::size_t{INT32_MAX} - kBlockSize; }

}  // namespace

bool DESBase::crypt(int direction, int mode, const Bytes& iv, const Bytes& input, Bytes& output,
                    const Bytes& key) const {
  if (direction == kEncrypt && mode == kEcb) return ecbEncrypt(iv, input, output, key);
  if (direction == kEncrypt && mode == kCbc) return cbcEncrypt(iv, input, output, key);
  if (direction == kDecrypt && mode == kEcb) return ecbDecrypt(iv, input, output, key);
  if (direction == kDecrypt && mode == kCbc) return cbcDecrypt(iv, input, output, key);
  return false;
}

bool DESBase::cbcEncrypt(const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input)) return false;
  KeySchedule schedule(key);
  Block chain = firstBlock(iv.data(), iv.size());
  const std::size_t length = input.size();
  output.resize(wholeBlocks(length + kBlockSize - 1));
  cbc(input.data(), output.data(), length, schedule, chain, DES_ENCRYPT);  // completes a partial block with zeros
  return true;
}

bool DESBase::cbcDecrypt(const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input)) return false;
  KeySchedule schedule(key);
  Block chain = firstBlock(iv.data(), iv.size());
  const std::size_t length = input.size();
  const std::size_t whole = wholeBlocks(length);
  // libcrypto reads a whole block even where fewer bytes are left: give it a copy that has them.
  Block tail = firstBlock(input.data() + whole, length - whole);
  output.resize(length);
  cbc(input.data(), output.data(), whole, schedule, chain, DES_DECRYPT);
  cbc(tail.bytes, tail.bytes, kBlockSize, schedule, chain, DES_DECRYPT);
  std::copy_n(tail.bytes, length - whole, output.begin() + static_cast<std::ptrdiff_t>(whole));
  return true;
}

bool DESBase::ecbEncrypt(const Bytes& /*iv*/, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input)) return false;
  KeySchedule schedule(key);
  const std::size_t length = input.size();
  const Block tail = firstBlock(input.data() + wholeBlocks(length), length - wholeBlocks(length));
  output.resize(wholeBlocks(length + kBlockSize - 1));
  for (std::size_t at = 0; at < output.size(); at += kBlockSize) {
    const unsigned char* block = at + kBlockSize <= length ? input.data() + at : tail.bytes;
    const Block enciphered = ecb(block, schedule, DES_ENCRYPT);
    std::copy_n(enciphered.bytes, kBlockSize, output.begin() + static_cast<std::ptrdiff_t>(at));
  }
  return true;
}

bool DESBase::ecbDecrypt(const Bytes& /*iv*/, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input) || input.size() % kBlockSize != 0) return false;
  KeySchedule schedule(key);
  output.resize(input.size());
  for (std::size_t at = 0; at < output.size(); at += kBlockSize) {
    const Block plain = ecb(input.data() + at, schedule, DES_DECRYPT);
    std::copy_n(plain.bytes, kBlockSize, output.begin() + static_cast<std::ptrdiff_t>(at));
  }
  return true;
}

}  // namespace tovr
