// The form in which the tables keep payloads: a 32-bit little-endian length and the payload, encrypted together with
// DES-CBC and padded with zeros to whole cipher blocks.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// The encrypted blob of a row; nothing if the row does not exist. Throws Error on failure.
std::optional<Bytes> queryPayload(Session& session, const std::string& table, std::int64_t id);

// Decrypts a stored blob. Throws Error if it is damaged.
Bytes decipherBlob(tovr::IEncryption& encryption, const Bytes& stored);

// The same; nothing if encrypting the payload again would give other bytes, because the blob is damaged or another
// program padded it differently.
std::optional<Bytes> decipherExactly(tovr::IEncryption& encryption, const Bytes& stored);

// The stored form of a payload. Throws Error if encryption fails or the payload is too large.
Bytes encipherBlob(tovr::IEncryption& encryption, const unsigned char* payload, std::size_t length);

// The size of a stored blob's payload. Throws Error if it is damaged.
std::size_t payloadLengthOf(tovr::IEncryption& encryption, const Bytes& stored);

// Changes a stored blob in place. `change` gets the payload from byte `skipped` on. Earlier bytes are neither decrypted
// nor encrypted again, since a cipher block depends only on those before it. Throws Error if encryption fails.
// REQUIRES: payloadLengthOf() succeeded and is larger than `skipped`.
void changePayload(tovr::IEncryption& encryption, Bytes& stored, std::size_t skipped,
                   const std::function<void(unsigned char* payload)>& change);

}  // namespace tovrdb
