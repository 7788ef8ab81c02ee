// Payloads to their stored form and back, through the service that the host keeps under "Encryption".
//
// A host's own service may be any cipher: it gets the whole framed buffer in one call, with the blobs' key as key and
// as initialisation vector. The library's own is known to be DES in CBC mode, where any run of whole cipher blocks
// deciphers by itself with the cipher block before it as its initialisation vector, and enciphering goes on with the
// last cipher block written (FIPS 81). So its cipher works from the caller's bytes into the result: no copy of a block
// is made, and a part of a blob is deciphered without the rest.
//
// No plaintext stays behind in memory that is released, but for what the service itself may leave.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "crypto/DESKey.h"
#include "crypto/IEncryption.h"
#include "crypto/WipedBuffer.h"

namespace tovr {

// The length prefix and the payload, enciphered. False, with `out` untouched, where the service fails, for null data
// with a length, and for a payload of 2 GiB or more.
bool encipherPayload(IEncryption& encryption, const void* data, std::uint32_t length, IEncryption::Bytes& out);

// The payload of a stored blob. False, with `out` untouched, where it does not decipher to a whole frame.
bool decipherPayload(IEncryption& encryption, const void* blob, std::size_t length, IEncryption::Bytes& out);

// A stored blob that is read in parts. Borrows the service and the bytes.
class EncipheredBlob {
 public:
  EncipheredBlob(IEncryption& encryption, const void* bytes, std::size_t size);

  // Deciphers the length prefix, with a host's own service everything. False where decipherPayload would fail.
  bool open();

  // Bytes of the payload. REQUIRES: open() succeeded.
  std::uint32_t payloadSize() const { return payloadSize_; }

  // `rows` runs of `rowSize` payload bytes, the first at `offset`, each `stride` behind the one before, copied to `out`
  // without gaps. REQUIRES: open() succeeded; all of them lie inside the payload; stride >= rowSize.
  void readRows(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows, unsigned char* out);

 private:
  bool openWhole();
  void copyRows(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                unsigned char* out) const;
  void readAcrossGaps(std::size_t offset, std::size_t rowSize, std::size_t stride, std::size_t rows,
                      unsigned char* out);
  void decipher(std::size_t begin, std::size_t size, unsigned char* out) const;

  IEncryption& encryption_;
  const std::shared_ptr<const DESKey> key_;  // null where the service is a host's own
  const unsigned char* bytes_;
  std::size_t size_;
  std::uint32_t payloadSize_ = 0;
  WipedBuffer plain_;  // of a host's own service the whole frame; else a few rows on their way
};

}  // namespace tovr
