// Blobs that are enciphered in pieces. Reading them in parts is fuzz/WindowFuzz's to test.
#include "storage/BlobCipher.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

TEST(BlobCipherTest, PiecesChainToOneCipherText) {
  Encryption encryption;
  for (const std::size_t size : {0U, 1U, 4U, 65531U, 65532U, 65533U, 131068U, 200001U}) {
    const Bytes payload = pattern(size, 3);
    Bytes framed = payload;
    framed.insert(framed.begin(), {static_cast<unsigned char>(size), static_cast<unsigned char>(size >> 8),
                                   static_cast<unsigned char>(size >> 16), 0});
    Bytes whole;
    Bytes pieces;
    encryption.encrypt("kelptarn", "kelptarn", framed, whole);
    ASSERT_TRUE(encipherPayload(encryption, payload.data(), static_cast<unsigned>(size), pieces));
    EXPECT_TRUE(pieces == whole) << size << " bytes";
  }
}

}  // namespace tovrtest
