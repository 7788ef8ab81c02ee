// Whatever service the host keeps under "Encryption": blobs are stored and read through it alone.
#include <utility>

#include "tests/support/Fixture.h"

namespace tovrtest {

// A cipher that is no block chain: every byte is masked by its place, and nothing is padded. Fails where it is told to,
// after it has made its whole result.
class MaskEncryption final : public IEncryption {
 public:
  using Text = std::string;

  bool encrypt(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    return mask(key, iv, input, output);
  }
  bool decrypt(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    return mask(key, iv, input, output);
  }
  bool encryptKeyPadded(const Text&, const Text&, const Bytes&, Bytes&) override { return false; }
  bool decryptKeyPadded(const Text&, const Text&, const Bytes&, Bytes&) override { return false; }
  bool encryptFile(const Text&, const Text&, const Text&) override { return false; }
  bool encryptFile(const Text&, const Text&, const Text&, const Text&) override { return false; }
  bool decryptFile(const Text&, const Text&, const Text&) override { return false; }
  bool decryptFile(const Text&, const Text&, const Text&, const Text&) override { return false; }

  std::vector<std::size_t> takeCalls() { return std::exchange(calls_, {}); }

  bool fails = false;

 private:
  bool mask(const Text& key, const Text& iv, const Bytes& input, Bytes& output) {
    EXPECT_EQ(key, "kelptarn");
    EXPECT_EQ(iv, "kelptarn");
    calls_.push_back(input.size());
    output = input;
    for (std::size_t i = 0; i < output.size(); ++i) output[i] ^= static_cast<unsigned char>(0x5A + i * 7);
    return !fails;
  }

  std::vector<std::size_t> calls_;  // the bytes that each was given
};

class BlobServiceTest : public DatabaseTest {
 protected:
  void SetUp() override {
    serveEncryption(mask);
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("", {0, 0, 9999, 9999}), kOk);
  }
  int store(const Rect& rect, Bytes& cells, int cellBytes) {
    CoefData record = coef(rect, cells, cellBytes);
    return manager->insertData(&record);
  }
  MaskEncryption mask;
};

TEST_F(BlobServiceTest, AHostsOwnCipherGetsEveryBlobWholeInOneCall) {
  for (const int size : {1, 4, 7, 8, 65531, 65532, 65533, 131069, 3 * 1024 * 1024 + 5}) {
    SCOPED_TRACE(size);
    Bytes bytes = pattern(static_cast<std::size_t>(size), 1);
    const std::vector<std::size_t> oneCall = {bytes.size() + 4};
    const Rect row = {0, 0, size - 1, 0};
    run("update Screen_Info set right = " + std::to_string(size));
    ASSERT_EQ(store(row, bytes, 1), kOk);
    EXPECT_EQ(mask.takeCalls(), oneCall);
    EXPECT_TRUE(cellsAt(row) == bytes);
    EXPECT_EQ(mask.takeCalls(), oneCall);
    ASSERT_EQ(insertData(5, bytes), kOk);
    EXPECT_EQ(mask.takeCalls(), oneCall);
    EXPECT_TRUE(readData(5).bytes == bytes);
    EXPECT_EQ(mask.takeCalls(), oneCall);
  }
}

TEST_F(BlobServiceTest, WindowsOfAHostsOwnCipherAreCutOutOfTheWhole) {
  constexpr std::ptrdiff_t kCell = 3;
  Bytes cells = pattern(360000, 2);
  ASSERT_EQ(store({0, 0, 299, 399}, cells, 3), kOk);
  for (const Rect& window : {Rect{0, 0, 0, 0}, Rect{299, 399, 299, 399}, Rect{17, 0, 17, 399}, Rect{1, 2, 298, 397}}) {
    Bytes wanted;
    for (std::ptrdiff_t y = window.top; y <= window.bottom; ++y) {
      const auto row = cells.begin() + y * 300 * kCell;
      wanted.insert(wanted.end(), row + window.left * kCell, row + (window.right + 1) * kCell);
    }
    EXPECT_TRUE(cellsAt(window) == wanted) << testing::PrintToString(window);
  }
}

TEST_F(BlobServiceTest, AResultOfTheRightSizeDoesNotHideThatTheCipherFailed) {
  Bytes kept = pattern(200000, 3);
  Bytes other = pattern(200000, 4);
  const Rect row = {0, 0, 1999, 0};
  ASSERT_EQ(store(row, kept, 100), kOk);
  mask.fails = true;
  EXPECT_EQ(store(row, other, 100), kCipherFailed);
  EXPECT_EQ(insertData(5, other), kCipherFailed);
  EXPECT_EQ(query(row).code, kCipherFailed);
  mask.fails = false;
  EXPECT_TRUE(cellsAt(row) == kept);
  EXPECT_EQ(countOf("Data"), 0);
}

TEST_F(BlobServiceTest, OnlyObjectsOfThisLibraryCountAsItsOwn) {
  Encryption another;
  EXPECT_EQ(Encryption::own(host.cipher), &host.cipher);
  EXPECT_EQ(Encryption::own(another), &another);
  EXPECT_EQ(Encryption::own(host.encryption), nullptr);  // it forwards to one
  EXPECT_EQ(Encryption::own(mask), nullptr);
  // An object of another compiler: no type information in front of its functions.
  const void* const functions[16] = {};
  const void* const* const object[] = {functions};
  EXPECT_EQ(Encryption::own(*reinterpret_cast<IEncryption*>(const_cast<const void* const**>(object))), nullptr);
}

}  // namespace tovrtest
