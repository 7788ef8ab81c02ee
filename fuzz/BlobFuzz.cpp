// Enciphering, deciphering and framing of stored blobs: the input as a payload, as a frame and as a blob.
#include <algorithm>

#include "crypto/Encryption.h"
#include "fuzz/Choices.h"
#include "fuzz/Target.h"
#include "storage/BlobCipher.h"
#include "storage/BlobFraming.h"

namespace tovrfuzz {
namespace {

const char* const kBlobKey = "kelptarn";

// The pieces in which payloads are enciphered are smaller.
constexpr std::size_t kSeveralPieces = 200000;

Bytes frameOf(const Bytes& payload) {
  const std::size_t size = payload.size();
  Bytes frame;
  for (const unsigned int shift : {0U, 8U, 16U, 24U}) frame.push_back(static_cast<unsigned char>(size >> shift));
  frame.insert(frame.end(), payload.begin(), payload.end());
  return frame;
}

void testPayload(tovr::Encryption& encryption, const Bytes& payload) {
  Bytes blob;
  Bytes inOneGo;
  Bytes back;
  const auto length = static_cast<std::uint32_t>(payload.size());
  require(tovr::encipherPayload(encryption, payload.data(), length, blob), "a payload is not enciphered");
  require(encryption.encrypt(kBlobKey, kBlobKey, frameOf(payload), inOneGo) && blob == inOneGo,
          "the pieces do not chain to what the cipher gives in one go");
  require(tovr::decipherPayload(encryption, blob.data(), blob.size(), back) && back == payload,
          "a payload does not come back");
}

void testBlob(tovr::Encryption& encryption, const Bytes& blob) {
  Bytes frame;
  require(encryption.decrypt(kBlobKey, kBlobKey, blob, frame) && frame.size() == blob.size(), "no bytes come back");
  std::size_t length = 0;
  for (std::size_t i = 4; frame.size() >= 4 && i-- > 0;) length = length * 256 + frame[i];
  const bool isFrame = frame.size() >= 4 && length <= frame.size() - 4;

  const Bytes untouched = {1, 2, 3};
  Bytes payload = untouched;
  const bool deciphered = tovr::decipherPayload(encryption, blob.data(), blob.size(), payload);
  require(deciphered == isFrame, "a frame is refused, or what is none is taken");
  if (isFrame) frame.assign(frame.begin() + 4, frame.begin() + 4 + static_cast<std::ptrdiff_t>(length));
  require(payload == (isFrame ? frame : untouched), "a wrong payload, or one of a refused blob");

  tovr::EncipheredBlob parts(encryption, blob.data(), blob.size());
  require(parts.open() == isFrame && parts.payloadSize() == (isFrame ? length : 0), "the two ways to read disagree");
}

void testFrame(tovr::Encryption& encryption, const Bytes& frame, std::size_t cut) {
  Bytes blob;
  require(encryption.encrypt(kBlobKey, kBlobKey, frame, blob), "a frame is not enciphered");
  blob.resize(blob.size() - std::min(cut, blob.size()));
  blob.shrink_to_fit();
  testBlob(encryption, blob);
}

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  Choices choices(data, size);
  tovr::Encryption encryption;
  const std::size_t cut = choices.below(16);
  const Bytes input = choices.rest();
  testPayload(encryption, input);
  testBlob(encryption, input);
  testFrame(encryption, input, cut);
  if (choices.isOneIn(1024)) testPayload(encryption, noise(kSeveralPieces + cut, 1));
  return 0;
}
