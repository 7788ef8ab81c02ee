#include "tool/StoredBlob.h"

#include <cstddef>

#include "storage/StatusCodes.h"
#include "tool/ToolError.h"

namespace tovrtool {
namespace {

constexpr char kBlobKey[] = "kelptarn";  // the same in every file; key and initialisation vector
constexpr std::size_t kLengthBytes = 4;
constexpr std::size_t kCipherBlock = 8;

}  // namespace

std::vector<unsigned char> decipherBlob(tovr::IEncryption& encryption, const std::vector<unsigned char>& stored) {
  std::vector<unsigned char> plain;
  const bool whole = !stored.empty() && stored.size() % kCipherBlock == 0;
  if (whole && encryption.decrypt(kBlobKey, kBlobKey, stored, plain)) {
    std::size_t length = 0;
    for (std::size_t i = kLengthBytes; i-- > 0;) length = length << 8 | plain[i];
    if (length <= plain.size() - kLengthBytes) {
      const auto begin = plain.begin() + kLengthBytes;
      return {begin, begin + static_cast<std::ptrdiff_t>(length)};
    }
  }
  throw ToolError(kRefused, std::to_string(tovr::kCipherFailed) + ": " + tovr::statusText(tovr::kCipherFailed));
}

}  // namespace tovrtool
