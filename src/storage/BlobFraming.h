// The plain form of every stored blob: a 32-bit little-endian length, then that many payload bytes. Enciphering may
// add zero bytes at the end; the length tells where the payload stops.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace tovr {

constexpr std::size_t kLengthPrefixSize = 4;

// Null data with a length other than 0 gives nothing.
std::optional<std::vector<unsigned char>> framePayload(const void* data, std::uint32_t length);

// Where the payload lies in a framed buffer: always right behind the prefix. Nothing when the buffer is shorter than
// the prefix, or than the prefix says.
std::optional<std::uint32_t> payloadLength(const std::vector<unsigned char>& framed);

}  // namespace tovr
