// Enciphered files: their layout, and what is left on the disk after success and failure.
#include <algorithm>

#include "crypto/Encryption.h"
#include "tests/support/Bytes.h"
#include "tests/support/FolderTest.h"

namespace tovrtest {

const std::string kKey = "kelptarn";
const std::string kIv = "otherone";

class EncryptionFileTest : public FolderTest {
 protected:
  // Every 512 bytes enciphered by themselves, each from the same vector.
  Bytes cipherOf(const Bytes& plain) {
    Bytes all;
    for (std::size_t at = 0; at < plain.size(); at += 512) {
      const auto* first = plain.data() + at;
      Bytes piece;
      EXPECT_TRUE(
          service.encrypt(kKey, kIv, Bytes(first, first + std::min<std::size_t>(512, plain.size() - at)), piece));
      all.insert(all.end(), piece.begin(), piece.end());
    }
    return all;
  }
  bool encrypt(const std::string& from, const std::string& to) { return service.encryptFile(kKey, kIv, from, to); }
  bool decrypt(const std::string& from, const std::string& to) { return service.decryptFile(kKey, kIv, from, to); }

  tovr::Encryption service;
  const std::string a = path("a");
  const std::string b = path("b");
  const std::string c = path("c");
};

class FileLengthTest : public EncryptionFileTest, public testing::WithParamInterface<std::size_t> {
 protected:
  const Bytes plain = letters(GetParam(), 8);
};

INSTANTIATE_TEST_SUITE_P(AroundTheChunks, FileLengthTest, testing::Values(0, 1, 511, 512, 513, 1000, 1001, 1024, 5000));

TEST_P(FileLengthTest, ComesBackFromAnotherFile) {
  writeFile(a, plain);
  ASSERT_TRUE(encrypt(a, b));
  ASSERT_TRUE(decrypt(b, c));
  EXPECT_EQ(contentOf(a), plain);
  EXPECT_EQ(contentOf(b).size(), (plain.size() + 7) / 8 * 8);
  EXPECT_EQ(contentOf(b), cipherOf(plain));
  EXPECT_EQ(contentOf(c), plain);
  EXPECT_FALSE(std::filesystem::exists(b + ".temp"));
  EXPECT_FALSE(std::filesystem::exists(c + ".temp"));
}

TEST_P(FileLengthTest, ComesBackInPlace) {
  writeFile(a, plain);
  ASSERT_TRUE(service.encryptFile(kKey, kIv, a));
  EXPECT_EQ(contentOf(a), cipherOf(plain));
  ASSERT_TRUE(service.decryptFile(kKey, kIv, a));
  EXPECT_EQ(contentOf(a), plain);
  EXPECT_FALSE(std::filesystem::exists(a + ".temp"));
}

TEST_F(EncryptionFileTest, DecipheringCutsEachChunkAtItsFirstZeroByte) {
  Bytes plain = letters(1200, 8);
  plain[99] = plain[300] = 0;  // both of the first chunk
  writeFile(a, plain);
  ASSERT_TRUE(encrypt(a, b));
  ASSERT_TRUE(decrypt(b, c));
  plain.erase(plain.begin() + 99, plain.begin() + 512);
  EXPECT_EQ(contentOf(c), plain);
}

TEST_F(EncryptionFileTest, AnExistingDestinationStaysAndTheNewContentIsKeptBesideIt) {
  const Bytes plain = letters(100, 8);
  const Bytes existing = letters(3, 9);
  writeFile(a, plain);
  writeFile(b, existing);
  writeFile(c, cipherOf(plain));
  EXPECT_TRUE(encrypt(a, b));
  EXPECT_EQ(contentOf(b + ".temp"), cipherOf(plain));
  EXPECT_TRUE(decrypt(c, b));
  EXPECT_EQ(contentOf(b + ".temp"), plain);
  EXPECT_EQ(contentOf(b), existing);
  EXPECT_EQ(contentOf(a), plain);
}

TEST_F(EncryptionFileTest, AMissingSourceFailsAndLeavesAnEmptyTemporaryFile) {
  EXPECT_FALSE(encrypt(a, b));
  EXPECT_EQ(contentOf(b + ".temp"), Bytes{});
  std::filesystem::remove(b + ".temp");
  EXPECT_FALSE(decrypt(a, b));
  EXPECT_EQ(contentOf(b + ".temp"), Bytes{});
}

TEST_F(EncryptionFileTest, AFolderCannotBeReadAndStays) {
  const std::string folder = path("folder");
  std::filesystem::create_directory(folder);
  EXPECT_FALSE(encrypt(folder, b));
  EXPECT_FALSE(decrypt(folder, b));
  EXPECT_FALSE(encrypt(folder, folder));
  EXPECT_FALSE(decrypt(folder, folder));
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  EXPECT_FALSE(std::filesystem::exists(b));
}

TEST_F(EncryptionFileTest, ADestinationThatCannotBeMadeLeavesTheSource) {
  writeFile(a, letters(10, 8));
  EXPECT_FALSE(encrypt(a, path("no folder/b")));
  EXPECT_FALSE(decrypt(a, path("no folder/b")));
  EXPECT_EQ(contentOf(a), letters(10, 8));
}

}  // namespace tovrtest
