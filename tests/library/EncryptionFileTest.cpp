// Enciphered files: their layout, and what is left on the disk after success and failure.
#include "crypto/Encryption.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

const std::string kKey = "kelptarn";
const std::string kIv = "otherone";

class EncryptionFileTest : public FolderTest {
 public:
  // Every 512 bytes enciphered by themselves, each from the same vector.
  static Bytes cipherOf(const Bytes& plain) {
    Bytes all;
    for (std::size_t at = 0; at < plain.size(); at += 512) {
      const auto* first = plain.data() + at;
      Bytes piece;
      EXPECT_TRUE(DES().encrypt(kKey, kIv, Bytes(first, first + std::min<std::size_t>(512, plain.size() - at)), piece));
      all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
  }
  static Bytes text(std::size_t size) {
    Bytes bytes = pattern(size, 8);
    for (auto& byte : bytes) byte = static_cast<unsigned char>('A' + byte % 26);
    return bytes;
  }
  bool encrypt(const std::string& from, const std::string& to) { return service.encryptFile(kKey, kIv, from, to); }
  bool decrypt(const std::string& from, const std::string& to) { return service.decryptFile(kKey, kIv, from, to); }

  Encryption service;
  const std::string a = path("a");
  const std::string b = path("b");
};

TEST_F(EncryptionFileTest, EveryLengthComesBackFromItsOwnChunks) {
  for (const std::size_t size : {0U, 1U, 511U, 512U, 513U, 1000U, 1001U, 1024U, 5000U}) {
    const std::string c = path("c" + std::to_string(size));
    const std::string d = path("d" + std::to_string(size));
    const Bytes plain = text(size);
    writeFile(a, plain);
    ASSERT_TRUE(encrypt(a, c) && decrypt(c, d));
    EXPECT_EQ(contentOf(c).size(), (size + 7) / 8 * 8);
    EXPECT_EQ(contentOf(c), cipherOf(plain));
    EXPECT_EQ(contentOf(d), plain);
    ASSERT_TRUE(service.encryptFile(kKey, kIv, a));
    EXPECT_EQ(contentOf(a), cipherOf(plain));
    ASSERT_TRUE(service.decryptFile(kKey, kIv, a));
    EXPECT_EQ(contentOf(a), plain);
    for (const std::string& name : {a, c, d}) EXPECT_FALSE(std::filesystem::exists(name + ".temp"));
  }
}

TEST_F(EncryptionFileTest, DecipheringCutsEachChunkAtItsFirstZeroByte) {
  Bytes plain = text(1200);
  plain[99] = plain[300] = 0;  // both of the first chunk
  writeFile(a, plain);
  ASSERT_TRUE(encrypt(a, b) && decrypt(b, path("c")));
  plain.erase(plain.begin() + 99, plain.begin() + 512);
  EXPECT_EQ(contentOf(path("c")), plain);
}

TEST_F(EncryptionFileTest, AnExistingDestinationStaysAndTheNewContentIsKeptBesideIt) {
  writeFile(a, text(100));
  writeFile(b, text(3));
  EXPECT_TRUE(encrypt(a, b));
  EXPECT_EQ(contentOf(b + ".temp"), cipherOf(text(100)));
  writeFile(path("c"), cipherOf(text(100)));
  EXPECT_TRUE(decrypt(path("c"), b));
  EXPECT_EQ(contentOf(b + ".temp"), text(100));
  EXPECT_EQ(contentOf(b), text(3));
  EXPECT_EQ(contentOf(a), text(100));
}

TEST_F(EncryptionFileTest, WhatCannotBeOpenedOrReadFailsAndLeavesTheRest) {
  const std::string folder = path("folder");
  std::filesystem::create_directory(folder);
  writeFile(a, text(10));
  for (const auto operation : {&EncryptionFileTest::encrypt, &EncryptionFileTest::decrypt}) {
    EXPECT_FALSE((this->*operation)(path("missing"), b));
    EXPECT_EQ(contentOf(b + ".temp"), Bytes{});
    EXPECT_FALSE((this->*operation)(folder, b) || (this->*operation)(folder, folder));
    EXPECT_TRUE(std::filesystem::is_directory(folder) && !std::filesystem::exists(b));
    EXPECT_FALSE((this->*operation)(a, path("no folder/b")));
    EXPECT_EQ(contentOf(a), text(10));
    std::filesystem::remove(b + ".temp");
  }
}

}  // namespace tovrtest
