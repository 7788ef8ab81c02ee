#include "crypto/DESBase.h"

#define OPENSSL_SUPPRESS_DEPRECATED  // single DES is deprecated since OpenSSL 3.0; the core's contract has it
#include <openssl/des.h>

#include <algorithm>
#include <cstdint>

#include "crypto/DESKey.h"
#include "crypto/WipedBuffer.h"

namespace tovr {
namespace {

using Bytes = DESBase::Bytes;

constexpr std::size_t kBlockSize = DESBase::kBlockSize;

std::size_t wholeBlocks(std::size_t length) { return length / kBlockSize * kBlockSize; }

bool tooLong(const Bytes& input) { return input.size() > INT32_MAX - kBlockSize; }

DESBlock firstBlock(const Bytes& bytes) { return DESBlock::firstOf(bytes.data(), bytes.size()); }

std::shared_ptr<const DESKey> readyKey(const DESBase& cipher, const Bytes& bytes) {
  DESBlock key = firstBlock(bytes);
  auto ready = cipher.ready(key);
  wipe(key.bytes, kBlockSize);
  return ready;
}

// ECB, which no service asks for, is left to libcrypto, block by block.
class EcbKey {
 public:
  explicit EcbKey(const Bytes& bytes) {
    DESBlock key = firstBlock(bytes);
    DES_set_key_unchecked(&key.bytes, &schedule_);
    wipe(key.bytes, kBlockSize);
  }
  EcbKey(const EcbKey&) = delete;
  EcbKey& operator=(const EcbKey&) = delete;
  ~EcbKey() { wipe(&schedule_, sizeof schedule_); }

  void crypt(DESBlock in, unsigned char* out, int direction) {
    DESBlock result;
    DES_ecb_encrypt(&in.bytes, &result.bytes, &schedule_, direction);
    std::copy_n(result.bytes, kBlockSize, out);
  }

 private:
  DES_key_schedule schedule_;
};

}  // namespace

std::shared_ptr<const DESKey> DESBase::ready(const DESBlock& key) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (kept_ == nullptr || !kept_->isMadeOf(key)) kept_ = std::make_shared<const DESKey>(key);
  return kept_;
}

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
  const auto ready = readyKey(*this, key);
  const DESBlock start = firstBlock(iv);
  const std::size_t length = input.size();
  output.resize(wholeBlocks(length + kBlockSize - 1));
  ready->encryptCbc(input.data(), length, output.data(), start);
  return true;
}

bool DESBase::cbcDecrypt(const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input)) return false;
  const auto ready = readyKey(*this, key);
  const DESBlock start = firstBlock(iv);
  output.resize(input.size());
  ready->decryptCbc(input.data(), output.size(), output.data(), start);
  return true;
}

bool DESBase::ecbEncrypt(const Bytes& /*iv*/, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input)) return false;
  EcbKey schedule(key);
  const std::size_t length = input.size();
  output.resize(wholeBlocks(length + kBlockSize - 1));
  for (std::size_t at = 0; at < output.size(); at += kBlockSize) {
    schedule.crypt(DESBlock::firstOf(input.data() + at, length - at), output.data() + at, DES_ENCRYPT);
  }
  return true;
}

bool DESBase::ecbDecrypt(const Bytes& /*iv*/, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input) || input.size() % kBlockSize != 0) return false;
  EcbKey schedule(key);
  output.resize(input.size());
  for (std::size_t at = 0; at < output.size(); at += kBlockSize) {
    schedule.crypt(DESBlock::firstOf(input.data() + at, kBlockSize), output.data() + at, DES_DECRYPT);
  }
  return true;
}

}  // namespace tovr
