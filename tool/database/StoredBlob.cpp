#include "tool/database/StoredBlob.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "host/StatusText.h"
#include "storage/StatusCodes.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr char kBlobKey[] = "kelptarn";  // the same in every file; key and initialisation vector
constexpr std::size_t kLengthBytes = 4;
constexpr std::size_t kCipherBlock = 8;

[[noreturn]] void fail() {
  throw ToolError(kRefused, std::to_string(tovr::kCipherFailed) + ": " + tovrhost::statusText(tovr::kCipherFailed));
}

// The deciphered frame and its payload's length; nothing where it is no frame.
struct Frame {
  std::vector<unsigned char> bytes;
  std::size_t length = 0;

  bool filledUpAsUsual() const {
    const auto fill = bytes.begin() + static_cast<std::ptrdiff_t>(kLengthBytes + length);
    return bytes.end() - fill < static_cast<std::ptrdiff_t>(kCipherBlock) &&
           std::all_of(fill, bytes.end(), [](unsigned char byte) { return byte == 0; });
  }
  std::vector<unsigned char> takePayload() {
    bytes.resize(kLengthBytes + length);
    bytes.erase(bytes.begin(), bytes.begin() + kLengthBytes);
    return std::move(bytes);
  }
};

std::optional<Frame> decipherFrame(tovr::IEncryption& encryption, const std::vector<unsigned char>& stored) {
  Frame frame;
  const bool whole = !stored.empty() && stored.size() % kCipherBlock == 0;
  if (!whole || !encryption.decrypt(kBlobKey, kBlobKey, stored, frame.bytes)) return std::nullopt;
  for (std::size_t i = kLengthBytes; i-- > 0;) frame.length = frame.length << 8 | frame.bytes[i];
  if (frame.length > frame.bytes.size() - kLengthBytes) return std::nullopt;
  return frame;
}

}  // namespace

std::vector<unsigned char> decipherBlob(tovr::IEncryption& encryption, const std::vector<unsigned char>& stored) {
  auto frame = decipherFrame(encryption, stored);
  if (!frame) fail();
  return frame->takePayload();
}

std::optional<std::vector<unsigned char>> decipherExactly(tovr::IEncryption& encryption,
                                                          const std::vector<unsigned char>& stored) {
  auto frame = decipherFrame(encryption, stored);
  if (!frame || !frame->filledUpAsUsual()) return std::nullopt;
  return frame->takePayload();
}

std::vector<unsigned char> encipherBlob(tovr::IEncryption& encryption, std::vector<unsigned char> payload) {
  constexpr std::size_t kMost =
      std::numeric_limits<std::int32_t>::max();  // the engine counts a blob's bytes in 32 bits
  const std::size_t length = payload.size();
  if (length > kMost - kLengthBytes - kCipherBlock) fail();
  payload.insert(payload.begin(), kLengthBytes, 0);
  for (std::size_t i = 0; i < kLengthBytes; ++i) payload[i] = static_cast<unsigned char>(length >> (8 * i));
  std::vector<unsigned char> stored;
  if (!encryption.encrypt(kBlobKey, kBlobKey, payload, stored)) fail();
  return stored;
}

}  // namespace tovrtool
