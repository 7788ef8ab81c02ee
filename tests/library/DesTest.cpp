// The cipher core against published vectors and an independent implementation.
#if !defined(_WIN32)
#include <nettle/cbc.h>
#include <nettle/des.h>
#endif

#include <fstream>

#include "crypto/DES.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

enum { kEncrypt = 0, kDecrypt = 1, kEcb = 0, kCbc = 1 };

Bytes hex(const std::string& digits) {
  Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

const Bytes kDesKey = hex("0123456789abcdef");
const Bytes kDesIv = hex("1234567890abcdef");

Bytes crypt(int direction, int mode, const Bytes& input, const Bytes& key = kDesKey, const Bytes& iv = kDesIv) {
  Bytes output = {1, 2, 3};
  EXPECT_TRUE(DES().crypt(direction, mode, iv, input, output, key));
  Bytes inPlace = input;
  EXPECT_TRUE(DES().crypt(direction, mode, iv, inPlace, inPlace, key));
  EXPECT_EQ(inPlace, output);
  return output;
}

Bytes zeroPadded(Bytes bytes) {
  bytes.resize((bytes.size() + 7) / 8 * 8);
  return bytes;
}

TEST(DesTest, AgreesWithEveryTableOfTheStandardsValidationSuite) {
  std::ifstream file(TOVR_TEST_DATA "/des-known-answers.txt");
  int answers = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    const Bytes key = hex(line.substr(0, 16));
    const Bytes plain = hex(line.substr(17, 16));
    const Bytes cipher = hex(line.substr(34, 16));
    EXPECT_EQ(crypt(kEncrypt, kEcb, plain, key), cipher) << line;
    EXPECT_EQ(crypt(kDecrypt, kEcb, cipher, key), plain) << line;
    ++answers;
  }
  EXPECT_EQ(answers, 64 + 64 + 56 + 32 + 19);
}

// FIPS 81, table C1: "Now is the time for all "
TEST(DesTest, ChainsAsPublished) {
  const Bytes plain = bytesOf("Now is the time for all ");
  const Bytes cipher = hex("e5c7cdde872bf27c43e934008c389c0f683788499a7c05f6");
  EXPECT_EQ(crypt(kEncrypt, kCbc, plain), cipher);
  EXPECT_EQ(crypt(kDecrypt, kCbc, cipher), plain);
}

#if !defined(_WIN32)  // where that implementation is not to be had

// The chaining of another implementation; whole blocks only.
Bytes chainedByNettle(int direction, Bytes blocks) {
  struct CBC_CTX(des_ctx, DES_BLOCK_SIZE) context;
  des_set_key(&context.ctx, kDesKey.data());
  CBC_SET_IV(&context, kDesIv.data());
  if (direction == kEncrypt) {
    CBC_ENCRYPT(&context, des_encrypt, blocks.size(), blocks.data(), blocks.data());
  } else {
    CBC_DECRYPT(&context, des_decrypt, blocks.size(), blocks.data(), blocks.data());
  }
  return blocks;
}

// Buffers are sized exactly: a read or a write beyond them is the address sanitizer's to report.
TEST(DesTest, EveryLengthIsPaddedWithZerosAndPartialBlocksStayInside) {
  std::vector<std::size_t> lengths = {1000, 65536, 65539, 1234567};
  for (std::size_t length = 0; length <= 64; ++length) lengths.push_back(length);
  for (const std::size_t length : lengths) {
    const Bytes plain = pattern(length, 5);
    const Bytes padded = zeroPadded(plain);
    const Bytes chained = chainedByNettle(kEncrypt, padded);
    EXPECT_TRUE(crypt(kEncrypt, kCbc, plain) == chained) << length;
    EXPECT_TRUE(crypt(kDecrypt, kCbc, chained) == padded) << length;
    EXPECT_TRUE(crypt(kDecrypt, kEcb, crypt(kEncrypt, kEcb, plain)) == padded) << length;
    Bytes partial = chainedByNettle(kDecrypt, padded);
    partial.resize(length);
    EXPECT_TRUE(crypt(kDecrypt, kCbc, plain) == partial) << length;
    Bytes out = {9};
    EXPECT_FALSE(DES().crypt(0, 2, kDesIv, plain, out, kDesKey) || DES().crypt(2, 1, kDesIv, plain, out, kDesKey));
    EXPECT_EQ(DES().crypt(kDecrypt, kEcb, {}, plain, out, kDesKey), length % 8 == 0);
    EXPECT_EQ(out == Bytes{9}, length % 8 != 0) << length;
  }
}

#endif

TEST(DesTest, ShortKeysAreZeroExtendedAndLongOnesCut) {
  const Bytes plain = pattern(20, 7);
  for (const std::string text : {"", "k", "seven77", "kelptarn", "nine chrs", "kelptarn and more"}) {
    Bytes eight = bytesOf(text);
    eight.resize(8);
    for (const auto& [encrypt, decrypt] :
         {std::pair(&DES::encrypt, &DES::decrypt), std::pair(&DES::encryptKeyPadded, &DES::decryptKeyPadded)}) {
      Bytes cipher;
      Bytes back;
      EXPECT_TRUE((DES().*encrypt)(text, text, plain, cipher) && (DES().*decrypt)(text, text, cipher, back));
      EXPECT_EQ(cipher, crypt(kEncrypt, kCbc, plain, eight, eight)) << text;
      EXPECT_EQ(back, zeroPadded(plain)) << text;
    }
  }
}

}  // namespace tovrtest
