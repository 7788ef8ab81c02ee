// The plain form of every stored blob: a 32-bit little-endian length, then that many payload bytes. Enciphering may
// add zero bytes at the end; the length tells where the payload stops.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tovr {

constexpr std::size_t kLengthPrefixSize = 4;

// The DES key of every blob, in every file; also the initialisation vector of its first cipher block.
constexpr char kBlobKey[] = "kelptarn";

std::array<unsigned char, kLengthPrefixSize> lengthPrefix(std::uint32_t length);

// The payload's length out of the first bytes of a framed buffer of `framedSize` bytes; `framed` holds as many of them
// as there are, but no more than a prefix is needed. Nothing when the buffer is shorter than the prefix, or than the
// prefix says.
std::optional<std::uint32_t> payloadLength(const unsigned char* framed, std::size_t framedSize);

}  // namespace tovr
