// Whatever service the host keeps under "Encryption": blobs are stored and read through it alone.
#include <utility>

#include "tests/support/Fixture.h"

namespace tovrtest {

// A cipher that is no block chain: every byte is masked by its place, and nothing is padded. Fails where it is told to,
// after it has made its whole result.
class MaskEncryption final : public FaultyEncryption {
 public:
  using FaultyEncryption::FaultyEncryption;

  bool encrypt(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    EXPECT_EQ(key, "kelptarn");
    EXPECT_EQ(iv, "kelptarn");
    calls_.push_back(input.size());
    output = input;
    for (std::size_t i = 0; i < output.size(); ++i) output[i] ^= static_cast<unsigned char>(0x5A + i * 7);
    return !fails;
  }
  bool decrypt(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    return encrypt(key, iv, input, output);
  }
  std::vector<std::size_t> takeCalls() { return std::exchange(calls_, {}); }

  bool fails = false;

 private:
  std::vector<std::size_t> calls_;  // the bytes that each was given
};

class BlobServiceTest : public ScreenFileTest {
 protected:
  void SetUp() override {
    serveEncryption(mask);
    ScreenFileTest::SetUp();
  }
  int store(Bytes& cells) {
    CoefData record = coef(kRow, cells, static_cast<int>(cells.size()));
    return manager->insertData(&record);
  }
  static constexpr Rect kRow{0, 0, 0, 0};
  MaskEncryption mask{host.cipher, host.points};
};

TEST_F(BlobServiceTest, AHostsOwnCipherGetsEveryBlobWholeInOneCall) {
  for (const std::size_t size : {1U, 4U, 7U, 8U, 65531U, 65532U, 131069U, 3U * 1024U * 1024U + 5U}) {
    SCOPED_TRACE(size);
    Bytes bytes = pattern(size, 1);
    const std::vector<std::size_t> oneCall = {size + 4};
    ASSERT_EQ(store(bytes), kOk);
    EXPECT_EQ(mask.takeCalls(), oneCall);
    EXPECT_TRUE(cellsAt(kRow) == bytes);
    EXPECT_EQ(mask.takeCalls(), oneCall);
    ASSERT_EQ(insertData(5, bytes), kOk);
    EXPECT_EQ(mask.takeCalls(), oneCall);
    EXPECT_TRUE(readData(5).bytes == bytes);
    EXPECT_EQ(mask.takeCalls(), oneCall);
  }
}

TEST_F(BlobServiceTest, AResultOfTheRightSizeDoesNotHideThatTheCipherFailed) {
  Bytes kept = pattern(200, 3);
  Bytes other = pattern(200, 4);
  ASSERT_EQ(store(kept), kOk);
  mask.fails = true;
  EXPECT_EQ(store(other), kCipherFailed);
  EXPECT_EQ(insertData(5, other), kCipherFailed);
  EXPECT_EQ(query(kRow).code, kCipherFailed);
  mask.fails = false;
  EXPECT_EQ(cellsAt(kRow), kept);
  EXPECT_EQ(countOf("Data"), 0);
}

TEST_F(BlobServiceTest, OnlyObjectsOfThisLibraryCountAsItsOwn) {
  EXPECT_EQ(Encryption::own(host.cipher), &host.cipher);
  EXPECT_EQ(Encryption::own(mask), nullptr);
  // An object of another compiler: no type information in front of its functions.
  const void* const functions[16] = {};
  const void* const* const object[] = {functions};
  EXPECT_EQ(Encryption::own(*reinterpret_cast<IEncryption*>(const_cast<const void* const**>(object))), nullptr);
}

}  // namespace tovrtest
