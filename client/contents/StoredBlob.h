// The form in which the tables keep payloads: a 32-bit little-endian length and the payload, enciphered as a whole.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// The stored blob of a row, still enciphered; nothing where there is no such row. Throws Error on failure.
std::optional<Bytes> queryPayload(Session& session, const std::string& table, std::int64_t id);

// The payload in a stored blob. Throws Error when it is damaged.
Bytes decipherBlob(tovr::IEncryption& encryption, const Bytes& stored);

// The same, and nothing where enciphering the payload again would not give the same bytes: damaged, or stored by a
// program that fills up differently.
std::optional<Bytes> decipherExactly(tovr::IEncryption& encryption, const Bytes& stored);

// The stored form of a payload. Throws Error when the service fails or the payload is too large for it.
Bytes encipherBlob(tovr::IEncryption& encryption, const unsigned char* payload, std::size_t length);

// The bytes of a stored blob's payload. Throws Error when it is damaged.
std::size_t payloadLengthOf(tovr::IEncryption& encryption, const Bytes& stored);

// Changes a stored blob in place. `change` gets the payload from its byte `skipped` on; what lies before is neither
// deciphered nor enciphered, for each cipher block depends on those before it only. Throws Error when the service
// fails. REQUIRES: payloadLengthOf() succeeded and is larger than `skipped`.
void changePayload(tovr::IEncryption& encryption, Bytes& stored, std::size_t skipped,
                   const std::function<void(unsigned char* payload)>& change);

}  // namespace tovrdb
