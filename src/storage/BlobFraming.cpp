#include "storage/BlobFraming.h"

namespace tovr {

std::array<unsigned char, kLengthPrefixSize> lengthPrefix(std::uint32_t length) {
  std::array<unsigned char, kLengthPrefixSize> prefix{};
  for (std::size_t i = 0; i < kLengthPrefixSize; ++i) prefix[i] = static_cast<unsigned char>(length >> (8 * i));
  return prefix;
}

std::optional<std::uint32_t> payloadLength(const unsigned char* framed, std::size_t framedSize) {
  if (framedSize < kLengthPrefixSize) return std::nullopt;
  std::uint32_t length = 0;
  for (std::size_t i = 0; i < kLengthPrefixSize; ++i) length |= std::uint32_t{framed[i]} << (8 * i);
  if (length > framedSize - kLengthPrefixSize) return std::nullopt;
  return length;
}

}  // namespace tovr
