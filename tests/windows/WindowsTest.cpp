// What only Windows does: text files with CR LF, two narrow encodings of paths, files held open, modules that unload.
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "client/disk/Platform.h"
#include "crypto/Encryption.h"
#include "host/PluginHost.h"
#include "tests/support/Files.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

const std::string kKey = "kelptarn";

std::string repeated(int times, const std::string& text) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

class WindowsTest : public FolderTest {
 protected:
  Bytes deciphered(const std::string& path) {
    Bytes plain;
    const Bytes cipher = contentOf(path);
    for (std::size_t at = 0; at < cipher.size(); at += 512) {  // each piece starts from the same vector
      const Bytes piece(cipher.data() + at, cipher.data() + std::min<std::size_t>(at + 512, cipher.size()));
      Bytes output;
      EXPECT_TRUE(service.decrypt(kKey, kKey, piece, output));
      plain.insert(plain.end(), output.begin(), output.end());
    }
    while (!plain.empty() && plain.back() == 0) plain.pop_back();
    return plain;
  }

  Encryption service;
  const std::string a = path("a");
  const std::string b = path("b");
};

TEST_F(WindowsTest, TextsLoseTheirCarriageReturnsBeforeTheyAreEncipheredAndGetThemBack) {
  const struct {
    std::string text, enciphered, back;
  } cases[] = {
      {"one\r\ntwo\r\n", "one\ntwo\n", "one\r\ntwo\r\n"},
      {"one\ntwo", "one\ntwo", "one\r\ntwo"},
      {"one\rtwo\r", "one\rtwo\r", "one\rtwo\r"},
      {"one\r\n\x1Atwo\r\n", "one\n", "one\r\n"},  // Ctrl-Z ends the text
      {"\x1A", "", ""},
      {repeated(511, "x") + "\r\n" + repeated(600, "y\r\n"), repeated(511, "x") + "\n" + repeated(600, "y\n"),
       repeated(511, "x") + "\r\n" + repeated(600, "y\r\n")},
  };
  for (const auto& c : cases) {
    writeFile(a, bytesOf(c.text));
    ASSERT_TRUE(service.encryptFile(kKey, kKey, a, b));
    EXPECT_EQ(deciphered(b), bytesOf(c.enciphered)) << c.text;
    EXPECT_EQ(contentOf(b).size(), (c.enciphered.size() + 7) / 8 * 8);
    ASSERT_TRUE(service.decryptFile(kKey, kKey, b));
    EXPECT_EQ(contentOf(b), bytesOf(c.back)) << c.text;
    std::filesystem::remove(b);
  }
}

TEST_F(WindowsTest, FilesThatOthersHoldOpenAreReadButNotReplaced) {
  writeFile(a, bytesOf("held"));
  const HANDLE held = CreateFileA(a.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(held, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(service.encryptFile(kKey, kKey, a, b));
  EXPECT_EQ(deciphered(b), bytesOf("held"));
  EXPECT_TRUE(service.encryptFile(kKey, kKey, a));  // what remove and rename answer does not matter
  EXPECT_EQ(contentOf(a), bytesOf("held"));
  EXPECT_EQ(contentOf(a + ".temp"), contentOf(b));
  CloseHandle(held);
}

TEST_F(WindowsTest, DatabasePathsAreUtf8AndTextPathsOfTheAnsiCodePage) {
  const std::wstring name = L"w\u00E4nd";
  const std::string folder = path("");
  const auto exists = [&](const std::wstring& file) {
    return std::filesystem::exists(folder / std::filesystem::path(file));
  };
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  EXPECT_EQ(host.manager().openDB(folder + "w\xC3\xA4nd", kRawKey), kOk);
  EXPECT_EQ(host.manager().createTables(), kOk);
  EXPECT_TRUE(exists(name));

  char narrow[16] = {};
  const int length = WideCharToMultiByte(CP_ACP, 0, name.c_str(), -1, narrow, sizeof narrow, nullptr, nullptr);
  if (length != 5 || narrow[1] == '?' || narrow[1] == 'a') GTEST_SKIP() << "not in code page " << GetACP();
  writeFile(a, bytesOf("text"));
  EXPECT_TRUE(service.encryptFile(kKey, kKey, a, folder + narrow + ".txt"));
  EXPECT_TRUE(exists(name + L".txt"));
}

TEST_F(WindowsTest, TheToolsPathsAreUtf8AsItHandsThemToTheFileSystem) {
  const std::string folder = path("");
  const std::string name = folder + "w\xC3\xA4nd-\xE5\xB1\x8F";
  std::ofstream(tovrdb::pathOf(name)) << "text";
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(folder) / L"w\u00E4nd-\u5C4F"));
  EXPECT_EQ(tovrdb::textOf(tovrdb::pathOf(name)), name);
}

TEST_F(WindowsTest, ExceptionsOfTheLibraryAreCaughtByTheHostThoughEachHasItsOwnRuntime) {
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  ASSERT_EQ(host.manager().openDB(path("a.db"), kRawKey), kOk);
  ASSERT_EQ(host.connection().exec("create table Screen_Info(id, dbid, screenname, top, left, bottom, right);"
                                   "insert into Screen_Info values(1, 1, 'a', 'no number', 0, 0, 0)"),
            kOk);
  const auto screens = host.makeRecord<ScreenInfoDataResult>();
  EXPECT_THROW(host.manager().queryData(screens.get()), std::invalid_argument);
  EXPECT_EQ(host.manager().closeDB(), kOk);
}

TEST_F(WindowsTest, NothingOfTheLibraryStaysOnceItIsUnloaded) {
  for (int round = 0; round < 2; ++round) {
    {
      tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
      Bytes output;
      EXPECT_EQ(host.manager().openDB(path("a.db"), kRawKey), kOk);  // both engines are at work
      EXPECT_TRUE(host.encryption().encrypt(kKey, kKey, Bytes(8), output));
      EXPECT_NE(GetModuleHandleA("tovrdatabaseservice.dll"), nullptr);
    }
    EXPECT_EQ(GetModuleHandleA("tovrdatabaseservice.dll"), nullptr);
    EXPECT_TRUE(std::filesystem::remove(path("a.db")));
  }
}

}  // namespace tovrtest
