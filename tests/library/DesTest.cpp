// The cipher core against published vectors and another implementation, its padding, and what it refuses.
#if !defined(_WIN32)  // nettle is not built there
#include <nettle/cbc.h>
#include <nettle/des.h>
#endif

#include <gtest/gtest.h>

#include <fstream>

#include "crypto/DES.h"
#include "tests/support/Bytes.h"

namespace tovrtest {

using tovr::DES;

enum { kEncrypt = 0, kDecrypt = 1, kEcb = 0, kCbc = 1 };

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
  EXPECT_EQ(answers, 64 + 64 + 56 + 32 + 19) << "lines of the five tables";
}

// FIPS 81, table C1: "Now is the time for all "
TEST(DesTest, ChainsAsPublished) {
  const Bytes plain = bytesOf("Now is the time for all ");
  const Bytes cipher = hex("e5c7cdde872bf27c43e934008c389c0f683788499a7c05f6");
  EXPECT_EQ(crypt(kEncrypt, kCbc, plain), cipher);
  EXPECT_EQ(crypt(kDecrypt, kCbc, cipher), plain);
}

// The chain of whole blocks as another implementation gives it, or as our own does.
Bytes chainOf(Bytes blocks) {
#if defined(_WIN32)
  return crypt(kEncrypt, kCbc, blocks);
#else
  struct CBC_CTX(des_ctx, DES_BLOCK_SIZE) context;
  des_set_key(&context.ctx, kDesKey.data());
  CBC_SET_IV(&context, kDesIv.data());
  CBC_ENCRYPT(&context, des_encrypt, blocks.size(), blocks.data(), blocks.data());
  return blocks;
#endif
}

// A partial block is deciphered as far as it goes in a chain, and refused without one.
TEST(DesTest, EveryLengthIsPaddedWithZerosToWholeBlocks) {
  std::vector<std::size_t> lengths = {1000, 65536, 65539, 1234567};
  for (std::size_t length = 0; length <= 64; ++length) lengths.push_back(length);
  for (const std::size_t length : lengths) {
    SCOPED_TRACE(length);
    const Bytes input = pattern(length, 5);
    const Bytes padded = zeroPadded(input);
    const Bytes chained = chainOf(padded);
    EXPECT_TRUE(crypt(kEncrypt, kCbc, input) == chained);
    EXPECT_TRUE(crypt(kDecrypt, kCbc, chained) == padded);
    EXPECT_TRUE(crypt(kDecrypt, kEcb, crypt(kEncrypt, kEcb, input)) == padded);
    Bytes partial = crypt(kDecrypt, kCbc, padded);
    partial.resize(length);
    EXPECT_TRUE(crypt(kDecrypt, kCbc, input) == partial);
    Bytes out = {9};
    EXPECT_EQ(DES().crypt(kDecrypt, kEcb, {}, input, out, kDesKey), length % 8 == 0);
    EXPECT_EQ(out != Bytes{9}, length % 8 == 0) << "a refused block leaves the output alone";
  }
}

TEST(DesTest, UnknownDirectionsAndModesAreRefused) {
  Bytes out = {9};
  EXPECT_FALSE(DES().crypt(kEncrypt, 2, kDesIv, Bytes(8), out, kDesKey));
  EXPECT_FALSE(DES().crypt(2, kCbc, kDesIv, Bytes(8), out, kDesKey));
  EXPECT_EQ(out, Bytes{9});
}

TEST(DesTest, ShortKeysAreZeroExtendedAndLongOnesCut) {
  const Bytes plain = pattern(20, 7);
  for (const std::string text : {"", "k", "seven77", "kelptarn", "nine chrs", "kelptarn and more"}) {
    SCOPED_TRACE(text);
    Bytes eight = bytesOf(text);
    eight.resize(8);
    const Bytes expected = crypt(kEncrypt, kCbc, plain, eight, eight);
    Bytes out;
    EXPECT_TRUE(DES().encrypt(text, text, plain, out));
    EXPECT_EQ(out, expected);
    EXPECT_TRUE(DES().encryptKeyPadded(text, text, plain, out));
    EXPECT_EQ(out, expected);
    EXPECT_TRUE(DES().decrypt(text, text, expected, out));
    EXPECT_EQ(out, zeroPadded(plain));
    EXPECT_TRUE(DES().decryptKeyPadded(text, text, expected, out));
    EXPECT_EQ(out, zeroPadded(plain));
  }
}

}  // namespace tovrtest
