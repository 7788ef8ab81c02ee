// The form in which the tables keep payloads: a 32-bit little-endian length and the payload, enciphered as a whole.
#pragma once

#include <vector>

#include "crypto/IEncryption.h"

namespace tovrtool {

// The payload in a stored blob. Throws ToolError when it is damaged.
std::vector<unsigned char> decipherBlob(tovr::IEncryption& encryption, const std::vector<unsigned char>& stored);

}  // namespace tovrtool
