#include "crypto/DESBase.h"

#include <algorithm>
#include <cstdint>

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

// In ECB every block is a chain of its own that starts from zeros.

bool DESBase::ecbEncrypt(const Bytes& /*iv*/, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input)) return false;
  const auto ready = readyKey(*this, key);
  const std::size_t length = input.size();
  output.resize(wholeBlocks(length + kBlockSize - 1));
  for (std::size_t at = 0; at < length; at += kBlockSize) {
    ready->encryptCbc(input.data() + at, std::min(kBlockSize, length - at), output.data() + at, {});
  }
  return true;
}

bool DESBase::ecbDecrypt(const Bytes& /*iv*/, const Bytes& input, Bytes& output, const Bytes& key) const {
  if (tooLong(input) || input.size() % kBlockSize != 0) return false;
  const auto ready = readyKey(*this, key);
  output.resize(input.size());
  for (std::size_t at = 0; at < output.size(); at += kBlockSize) {
    ready->decryptCbc(input.data() + at, kBlockSize, output.data() + at, {});
  }
  return true;
}

}  // namespace tovr
