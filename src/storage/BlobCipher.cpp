#include "storage/BlobCipher.h"

#include <algorithm>
#include <string>

#include "crypto/Encryption.h"
#include "storage/BlobFraming.h"

namespace tovr {
namespace {

using Bytes = IEncryption::Bytes;

constexpr std::size_t kBlock = 8;

// Every blob's DES key, which is its first initialisation vector too.
const char* const kBlobKey = "kelptarn";

// Small enough to stay in a processor's cache on its way through, large enough that a call costs nothing beside it.
constexpr std::size_t kPiece = std::size_t{64} * 1024;
static_assert(kPiece % kBlock == 0);

// The service's answers are 32-bit lengths on Windows.
constexpr std::size_t kLargestPayload = INT32_MAX - 2 * kBlock;

constexpr std::size_t roundDown(std::size_t size) { return size / kBlock * kBlock; }
constexpr std::size_t roundUp(std::size_t size) { return roundDown(size + kBlock - 1); }

std::string vectorAt(const unsigned char* block) { return std::string(block, block + kBlock); }

bool encipherWhole(IEncryption& encryption, const unsigned char* payload, std::size_t length, Bytes& enciphered) {
  const auto prefix = lengthPrefix(static_cast<std::uint32_t>(length));
  WipedBuffer framed(kLengthPrefixSize + length);
  framed.bytes.assign(prefix.begin(), prefix.end());
  framed.bytes.insert(framed.bytes.end(), payload, payload + length);
  return encryption.encrypt(kBlobKey, kBlobKey, framed.bytes, enciphered);
}

// REQUIRES: the service is the library's own.
bool encipherInPieces(IEncryption& encryption, const unsigned char* payload, std::size_t length, Bytes& enciphered) {
  const auto prefix = lengthPrefix(static_cast<std::uint32_t>(length));
  std::size_t left = length;
  std::string vector = kBlobKey;
  enciphered.reserve(roundUp(kLengthPrefixSize + length));
  WipedBuffer framed(std::min(kPiece, kLengthPrefixSize + length));
  Bytes& piece = framed.bytes;
  piece.assign(prefix.begin(), prefix.end());
  Bytes result;
  do {
    const std::size_t taken = std::min(left, kPiece - piece.size());
    piece.insert(piece.end(), payload, payload + taken);
    payload += taken;
    left -= taken;
    if (!encryption.encrypt(kBlobKey, vector, piece, result)) return false;
    enciphered.insert(enciphered.end(), result.begin(), result.end());
    vector = vectorAt(enciphered.data() + enciphered.size() - kBlock);
    piece.clear();
  } while (left > 0);
  return true;
}

bool decipherWhole(IEncryption& encryption, const unsigned char* blob, std::size_t length, Bytes& framed) {
  return encryption.decrypt(kBlobKey, kBlobKey, Bytes(blob, blob + length), framed);
}

}  // namespace

bool encipherPayload(IEncryption& encryption, const void* data, std::uint32_t length, Bytes& out) {
  if ((data == nullptr && length != 0) || length > kLargestPayload) return false;
  const auto* payload = static_cast<const unsigned char*>(data);
  Bytes enciphered;
  const bool done = Encryption::own(encryption) != nullptr ? encipherInPieces(encryption, payload, length, enciphered)
                                                           : encipherWhole(encryption, payload, length, enciphered);
  if (done) out = std::move(enciphered);
  return done;
}

bool decipherPayload(IEncryption& encryption, const void* blob, std::size_t length, Bytes& out) {
  if (blob == nullptr && length != 0) return false;
  WipedBuffer framed(length);
  if (!decipherWhole(encryption, static_cast<const unsigned char*>(blob), length, framed.bytes)) return false;
  const auto payload = payloadLength(framed.bytes.data(), framed.bytes.size());
  if (!payload) return false;
  const auto first = framed.bytes.begin() + kLengthPrefixSize;
  out.assign(first, first + *payload);
  return true;
}

EncipheredBlob::EncipheredBlob(IEncryption& encryption, const void* bytes, std::size_t size)
    : encryption_(encryption),
      inPieces_(Encryption::own(encryption) != nullptr),
      bytes_(static_cast<const unsigned char*>(bytes)),
      size_(size) {}

bool EncipheredBlob::open() {
  if (bytes_ == nullptr || !decipherFrame()) return false;
  const auto payload = payloadLength(plain_.bytes.data(), inPieces_ ? size_ : plain_.bytes.size());
  if (!payload) return false;
  payloadSize_ = *payload;
  return true;
}

bool EncipheredBlob::decipherFrame() {
  plain_.bytes.reserve(inPieces_ ? std::min(kPiece, size_) : size_);
  return inPieces_ ? decipher(0, std::min(kBlock, size_)) : decipherWhole(encryption_, bytes_, size_, plain_.bytes);
}

// A gap is worth deciphering along where that costs less than one more call: a key schedule and a few small copies, as
// long as some 128 bytes of DES.
bool EncipheredBlob::readRows(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                              unsigned char* out) {
  constexpr std::size_t kSmallGap = 128;
  if (!inPieces_) {
    copyRows(offset, rowSize, stride, rows, out);
    return true;
  }
  if (stride == rowSize) return read(offset, rows * rowSize, out);
  if (stride - rowSize <= kSmallGap && stride <= kPiece / 2) return readAcrossGaps(offset, rowSize, stride, rows, out);
  for (std::size_t row = 0; row < rows; ++row) {
    if (!read(offset + row * stride, rowSize, out + row * rowSize)) return false;
  }
  return true;
}

void EncipheredBlob::copyRows(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                              unsigned char* out) const {
  const unsigned char* first = plain_.bytes.data() + kLengthPrefixSize + offset;
  for (std::size_t row = 0; row < rows; ++row) std::copy_n(first + row * stride, rowSize, out + row * rowSize);
}

bool EncipheredBlob::read(std::size_t offset, std::size_t size, unsigned char* out) {
  while (size > 0) {
    const std::size_t framed = kLengthPrefixSize + offset;
    const std::size_t begin = roundDown(framed);
    const std::size_t end = std::min(begin + kPiece, std::min(roundUp(framed + size), size_));
    if (!decipher(begin, end)) return false;
    const std::size_t taken = std::min(size, end - framed);
    std::copy_n(plain_.bytes.data() + (framed - begin), taken, out);
    offset += taken;
    size -= taken;
    out += taken;
  }
  return true;
}

// Several rows in one run, and their gaps with them.
bool EncipheredBlob::readAcrossGaps(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                                    unsigned char* out) {
  const std::size_t rowsAtOnce = (kPiece - 2 * kBlock) / stride;
  for (std::size_t row = 0; row < rows; row += rowsAtOnce) {
    const std::size_t count = std::min(rowsAtOnce, rows - row);
    const std::size_t framed = kLengthPrefixSize + offset + row * stride;
    const std::size_t begin = roundDown(framed);
    const std::size_t last = framed + (count - 1) * stride + rowSize;
    if (!decipher(begin, std::min(roundUp(last), size_))) return false;
    for (std::size_t i = 0; i < count; ++i, out += rowSize) {
      std::copy_n(plain_.bytes.data() + (framed - begin) + i * stride, rowSize, out);
    }
  }
  return true;
}

// Deciphers the bytes from `begin`, the start of a cipher block, to `end` into plain_.
bool EncipheredBlob::decipher(std::size_t begin, std::size_t end) {
  piece_.assign(bytes_ + begin, bytes_ + end);
  const std::string vector = begin == 0 ? kBlobKey : vectorAt(bytes_ + begin - kBlock);
  return encryption_.decrypt(kBlobKey, vector, piece_, plain_.bytes) && plain_.bytes.size() == piece_.size();
}

}  // namespace tovr
