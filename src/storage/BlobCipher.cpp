#include "storage/BlobCipher.h"

#include <algorithm>
#include <string>

#include "crypto/Encryption.h"
#include "storage/BlobFraming.h"

namespace tovr {
namespace {

using Bytes = IEncryption::Bytes;

constexpr std::size_t kBlock = 8;

// What rows and the gaps between them are deciphered into at once: small enough to stay in a processor's cache.
constexpr std::size_t kPiece = std::size_t{64} * 1024;

// The service's answers are 32-bit lengths on Windows.
constexpr std::size_t kLargestPayload = INT32_MAX - 2 * kBlock;

constexpr std::size_t roundDown(std::size_t size) { return size / kBlock * kBlock; }
constexpr std::size_t roundUp(std::size_t size) { return roundDown(size + kBlock - 1); }

DESBlock blockAt(const void* bytes) { return DESBlock::firstOf(bytes, kBlock); }

std::shared_ptr<const DESKey> ownKey(IEncryption& encryption) {
  const Encryption* own = Encryption::own(encryption);
  return own != nullptr ? own->ready(kBlobKey) : nullptr;
}

bool encipherByService(IEncryption& encryption, const unsigned char* payload, std::size_t length, Bytes& enciphered) {
  const auto prefix = lengthPrefix(static_cast<std::uint32_t>(length));
  WipedBuffer framed(kLengthPrefixSize + length);
  framed.bytes.assign(prefix.begin(), prefix.end());
  framed.bytes.insert(framed.bytes.end(), payload, payload + length);
  return encryption.encrypt(kBlobKey, kBlobKey, framed.bytes, enciphered);
}

// The first cipher block takes the prefix and what of the payload has room beside it; the rest goes on behind it.
void encipherByKey(const DESKey& key, const unsigned char* payload, std::size_t length, Bytes& enciphered) {
  const auto prefix = lengthPrefix(static_cast<std::uint32_t>(length));
  const std::size_t beside = std::min(length, kBlock - kLengthPrefixSize);
  enciphered.resize(roundUp(kLengthPrefixSize + length));
  unsigned char* const first = enciphered.data();
  std::copy_n(payload, beside, std::copy(prefix.begin(), prefix.end(), first));
  key.encryptCbc(first, kBlock, first, blockAt(kBlobKey));
  key.encryptCbc(payload + beside, length - beside, first + kBlock, blockAt(first));
}

}  // namespace

bool encipherPayload(IEncryption& encryption, const void* data, std::uint32_t length, Bytes& out) {
  if ((data == nullptr && length != 0) || length > kLargestPayload) return false;
  const auto* payload = static_cast<const unsigned char*>(data);
  Bytes enciphered;
  if (const auto key = ownKey(encryption)) {
    encipherByKey(*key, payload, length, enciphered);
  } else if (!encipherByService(encryption, payload, length, enciphered)) {
    return false;
  }
  out = std::move(enciphered);
  return true;
}

bool decipherPayload(IEncryption& encryption, const void* blob, std::size_t length, Bytes& out) {
  EncipheredBlob enciphered(encryption, blob, length);
  if (!enciphered.open()) return false;
  const std::size_t size = enciphered.payloadSize();
  out.resize(size);
  enciphered.readRows(0, size, size, 1, out.data());
  return true;
}

EncipheredBlob::EncipheredBlob(IEncryption& encryption, const void* bytes, std::size_t size)
    : encryption_(encryption),
      key_(ownKey(encryption)),
      bytes_(static_cast<const unsigned char*>(bytes)),
      size_(size) {}

bool EncipheredBlob::open() {
  if (bytes_ == nullptr) return false;
  if (key_ == nullptr) return openWhole();
  unsigned char prefix[kLengthPrefixSize] = {};
  const std::size_t there = std::min(size_, sizeof prefix);
  decipher(0, there, prefix);
  const auto payload = payloadLength(prefix, there < sizeof prefix ? there : size_);
  if (payload) payloadSize_ = *payload;
  return payload.has_value();
}

bool EncipheredBlob::openWhole() {
  plain_.bytes.reserve(size_);
  if (!encryption_.decrypt(kBlobKey, kBlobKey, Bytes(bytes_, bytes_ + size_), plain_.bytes)) return false;
  const auto payload = payloadLength(plain_.bytes.data(), plain_.bytes.size());
  if (payload) payloadSize_ = *payload;
  return payload.has_value();
}

// A gap is worth deciphering along where that costs less than a run of its own for every row.
void EncipheredBlob::readRows(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                              unsigned char* out) {
  constexpr std::size_t kSmallGap = 128;
  if (key_ == nullptr) return copyRows(offset, rowSize, stride, rows, out);
  if (stride == rowSize) return decipher(kLengthPrefixSize + offset, rows * rowSize, out);
  if (stride - rowSize <= kSmallGap && stride <= kPiece / 2) return readAcrossGaps(offset, rowSize, stride, rows, out);
  for (std::size_t row = 0; row < rows; ++row) {
    decipher(kLengthPrefixSize + offset + row * stride, rowSize, out + row * rowSize);
  }
}

void EncipheredBlob::copyRows(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                              unsigned char* out) const {
  const unsigned char* first = plain_.bytes.data() + kLengthPrefixSize + offset;
  for (std::size_t row = 0; row < rows; ++row) std::copy_n(first + row * stride, rowSize, out + row * rowSize);
}

// Several rows in one run, and their gaps with them.
void EncipheredBlob::readAcrossGaps(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                                    unsigned char* out) {
  const std::size_t rowsAtOnce = kPiece / stride;
  for (std::size_t row = 0; row < rows; row += rowsAtOnce) {
    const std::size_t count = std::min(rowsAtOnce, rows - row);
    plain_.bytes.resize((count - 1) * stride + rowSize);
    decipher(kLengthPrefixSize + offset + row * stride, plain_.bytes.size(), plain_.bytes.data());
    for (std::size_t i = 0; i < count; ++i, out += rowSize) {
      std::copy_n(plain_.bytes.data() + i * stride, rowSize, out);
    }
  }
}

// `size` bytes of the frame from `begin`. Long runs of whole cipher blocks go straight into `out`; what is short, or
// begins or ends inside a block, by a piece that has all of its blocks.
void EncipheredBlob::decipher(std::size_t begin, std::size_t size, unsigned char* out) const {
  while (size > 0) {
    unsigned char piece[512];
    const std::size_t start = roundDown(begin);
    const DESBlock vector = start == 0 ? blockAt(kBlobKey) : blockAt(bytes_ + start - kBlock);
    std::size_t taken = roundDown(size);
    if (begin == start && size > sizeof piece) {
      key_->decryptCbc(bytes_ + start, taken, out, vector);
    } else {
      const std::size_t end = std::min({roundUp(begin + size), start + sizeof piece, size_});
      key_->decryptCbc(bytes_ + start, end - start, piece, vector);
      taken = std::min(size, end - begin);
      std::copy_n(piece + (begin - start), taken, out);
      wipe(piece, end - start);
    }
    begin += taken;
    size -= taken;
    out += taken;
  }
}

}  // namespace tovr
