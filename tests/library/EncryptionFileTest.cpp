// What enciphering a file leaves on the disk when it fails. When it succeeds, in place and elsewhere, at every length
// and over an existing file, it is fuzz/FileCipherFuzz's to test.
#include "crypto/Encryption.h"
#include "tests/support/Bytes.h"
#include "tests/support/Files.h"
#include "tests/support/FolderTest.h"

namespace tovrtest {

class EncryptionFileTest : public FolderTest {
 protected:
  bool encrypt(const std::string& from, const std::string& to) { return service.encryptFile(kKey, kIv, from, to); }
  bool decrypt(const std::string& from, const std::string& to) { return service.decryptFile(kKey, kIv, from, to); }
  void expectNeither(const std::string& from, const std::string& to) {
    EXPECT_FALSE(encrypt(from, to)) << from << " to " << to;
    EXPECT_FALSE(decrypt(from, to)) << from << " to " << to;
  }

  const std::string kKey = "kelptarn";
  const std::string kIv = "otherone";
  tovr::Encryption service;
  const std::string a = path("a");
  const std::string b = path("b");
};

TEST_F(EncryptionFileTest, AMissingSourceFailsAndLeavesAnEmptyTemporaryFile) {
  EXPECT_FALSE(encrypt(a, b));
  EXPECT_EQ(contentOf(b + ".temp"), Bytes{});
  std::filesystem::remove(b + ".temp");
  EXPECT_FALSE(decrypt(a, b));
  EXPECT_EQ(contentOf(b + ".temp"), Bytes{});
}

// Writing the temporary file would empty the source.
TEST_F(EncryptionFileTest, SourceIsTheTemporaryFile) {
  const std::string temporary = b + ".temp";
  writeFile(temporary, letters(10, 8));
  std::filesystem::create_hard_link(temporary, a);
  std::vector<std::string> names = {temporary, path(".") + "/b.temp", a};
#if !defined(_WIN32)  // needs a privilege there
  std::filesystem::create_symlink(temporary, path("link"));
  names.push_back(path("link"));
#endif
  for (const std::string& name : names) expectNeither(name, b);
  EXPECT_EQ(contentOf(temporary), letters(10, 8));
  EXPECT_FALSE(std::filesystem::exists(b));
}

TEST_F(EncryptionFileTest, AFolderCannotBeReadAndADestinationThatCannotBeMadeLeavesTheSource) {
  const std::string folder = path("folder");
  std::filesystem::create_directory(folder);
  writeFile(a, letters(10, 8));
  expectNeither(folder, b);
  expectNeither(folder, folder);
  expectNeither(a, path("no folder/b"));
  EXPECT_TRUE(std::filesystem::is_directory(folder));
  EXPECT_FALSE(std::filesystem::exists(b));
  EXPECT_EQ(contentOf(a), letters(10, 8));
}

}  // namespace tovrtest
