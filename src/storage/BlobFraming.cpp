#include "storage/BlobFraming.h"

#include <algorithm>

namespace tovr {

std::optional<std::vector<unsigned char>> framePayload(const void* data, std::uint32_t length) {
  if (data == nullptr && length != 0) return std::nullopt;
  std::vector<unsigned char> framed(std::size_t{length} + kLengthPrefixSize);
  for (std::size_t i = 0; i < kLengthPrefixSize; ++i) framed[i] = static_cast<unsigned char>(length >> (8 * i));
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::copy_n(bytes, length, framed.begin() + kLengthPrefixSize);
  return framed;
}

std::optional<std::uint32_t> payloadLength(const std::vector<unsigned char>& framed) {
  if (framed.size() < kLengthPrefixSize) return std::nullopt;
  std::uint32_t length = 0;
  for (std::size_t i = 0; i < kLengthPrefixSize; ++i) length |= std::uint32_t{framed[i]} << (8 * i);
  if (length > framed.size() - kLengthPrefixSize) return std::nullopt;
  return length;
}

}  // namespace tovr
