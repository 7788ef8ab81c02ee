// The form in which the tables keep payloads: a 32-bit little-endian length and the payload, enciphered as a whole.
#pragma once

#include <optional>
#include <vector>

#include "crypto/IEncryption.h"

namespace tovrtool {

// The payload in a stored blob. Throws ToolError when it is damaged.
std::vector<unsigned char> decipherBlob(tovr::IEncryption& encryption, const std::vector<unsigned char>& stored);

// The same, and nothing where enciphering the payload again would not give the same bytes: damaged, or stored by a
// program that fills up differently.
std::optional<std::vector<unsigned char>> decipherExactly(tovr::IEncryption& encryption,
                                                          const std::vector<unsigned char>& stored);

// The stored form of a payload. Throws ToolError when the service fails or the payload is too large for it.
std::vector<unsigned char> encipherBlob(tovr::IEncryption& encryption, std::vector<unsigned char> payload);

}  // namespace tovrtool
