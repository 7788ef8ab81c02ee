#include "client/contents/StoredBlob.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "client/session/SqlQuery.h"
#include "storage/BlobFraming.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

using tovr::kBlobKey;

constexpr std::size_t kCipherBlock = 8;

// A decrypted blob and where its payload ends.
struct Frame {
  Bytes bytes;
  std::size_t end = 0;

  bool filledUpAsUsual() const {
    const auto fill = bytes.begin() + static_cast<std::ptrdiff_t>(end);
    return bytes.end() - fill < static_cast<std::ptrdiff_t>(kCipherBlock) &&
           std::all_of(fill, bytes.end(), [](unsigned char byte) { return byte == 0; });
  }
  Bytes takePayload() {
    bytes.resize(end);
    bytes.erase(bytes.begin(), bytes.begin() + tovr::kLengthPrefixSize);
    return std::move(bytes);
  }
};

std::optional<Frame> decipherFrame(tovr::IEncryption& encryption, const Bytes& stored) {
  Frame frame;
  const bool whole = !stored.empty() && stored.size() % kCipherBlock == 0;
  if (!whole || !encryption.decrypt(kBlobKey, kBlobKey, stored, frame.bytes)) return std::nullopt;
  const auto length = tovr::payloadLength(frame.bytes.data(), frame.bytes.size());
  if (!length) return std::nullopt;
  frame.end = tovr::kLengthPrefixSize + *length;
  return frame;
}

}  // namespace

std::optional<Bytes> queryPayload(Session& session, const std::string& table, std::int64_t id) {
  return queryBlob(session.connection(), fmt::format("select {} from {} where id = {}", kPayloadColumn, table, id));
}

Bytes decipherBlob(tovr::IEncryption& encryption, const Bytes& stored) {
  auto frame = decipherFrame(encryption, stored);
  if (!frame) throw libraryError(tovr::kCipherFailed);
  return frame->takePayload();
}

std::optional<Bytes> decipherExactly(tovr::IEncryption& encryption, const Bytes& stored) {
  auto frame = decipherFrame(encryption, stored);
  if (!frame || !frame->filledUpAsUsual()) return std::nullopt;
  return frame->takePayload();
}

Bytes encipherBlob(tovr::IEncryption& encryption, const unsigned char* payload, std::size_t length) {
  constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();  // the engine counts a blob in 32 bits
  if (length > kMost - tovr::kLengthPrefixSize - kCipherBlock) throw libraryError(tovr::kCipherFailed);
  const auto prefix = tovr::lengthPrefix(static_cast<std::uint32_t>(length));
  Bytes frame(tovr::kLengthPrefixSize + length);
  std::copy_n(payload, length, std::copy(prefix.begin(), prefix.end(), frame.begin()));
  Bytes stored;
  if (!encryption.encrypt(kBlobKey, kBlobKey, frame, stored)) throw libraryError(tovr::kCipherFailed);
  return stored;
}

std::size_t payloadLengthOf(tovr::IEncryption& encryption, const Bytes& stored) {
  Bytes first;
  const bool whole = !stored.empty() && stored.size() % kCipherBlock == 0;
  if (!whole || !encryption.decrypt(kBlobKey, kBlobKey, Bytes(stored.begin(), stored.begin() + kCipherBlock), first)) {
    throw libraryError(tovr::kCipherFailed);
  }
  const auto length = tovr::payloadLength(first.data(), stored.size());
  if (!length) throw libraryError(tovr::kCipherFailed);
  return *length;
}

void changePayload(tovr::IEncryption& encryption, Bytes& stored, std::size_t skipped,
                   const std::function<void(unsigned char* payload)>& change) {
  const std::size_t framed = tovr::kLengthPrefixSize + skipped;
  const std::size_t begin = framed / kCipherBlock * kCipherBlock;
  const auto tail = stored.begin() + static_cast<std::ptrdiff_t>(begin);
  const std::string vector = begin == 0 ? kBlobKey : std::string(tail - kCipherBlock, tail);
  Bytes plain;
  if (!encryption.decrypt(kBlobKey, vector, Bytes(tail, stored.end()), plain)) throw libraryError(tovr::kCipherFailed);
  change(plain.data() + (framed - begin));
  Bytes enciphered;
  if (!encryption.encrypt(kBlobKey, vector, plain, enciphered)) throw libraryError(tovr::kCipherFailed);
  std::copy(enciphered.begin(), enciphered.end(), tail);
}

}  // namespace tovrdb
