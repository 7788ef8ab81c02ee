// The cipher core against published vectors, and its padding against itself.
#include "crypto/DES.h"
#include "tests/Fixture.h"

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

TEST(DesTest, AgreesWithPublishedVectors) {
  const struct {
    int mode;
    const char *key, *plain, *cipher;
  } cases[] = {
      // FIPS 81, tables B1 and C1: "Now is the time for all "
      {kEcb, "0123456789abcdef", "4e6f77206973207468652074696d6520666f7220616c6c20",
       "3fa40e8a984d48156a271787ab8883f9893d51ec4b563b53"},
      {kCbc, "0123456789abcdef", "4e6f77206973207468652074696d6520666f7220616c6c20",
       "e5c7cdde872bf27c43e934008c389c0f683788499a7c05f6"},
      // NIST SP 800-17, tables A.1 to A.4: variable plaintext, variable key, permutation, substitution
      {kEcb, "0101010101010101", "8000000000000000", "95f8a5e5dd31d900"},
      {kEcb, "8001010101010101", "0000000000000000", "95a8d72813daa94d"},
      {kEcb, "1046913489980131", "0000000000000000", "88d55e54f54c97b4"},
      {kEcb, "7ca110454a1a6e57", "01a1d6d039776742", "690f5b0d9a26939b"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(crypt(kEncrypt, c.mode, hex(c.plain), hex(c.key)), hex(c.cipher)) << c.plain;
    EXPECT_EQ(crypt(kDecrypt, c.mode, hex(c.cipher), hex(c.key)), hex(c.plain)) << c.cipher;
  }
}

// Buffers are sized exactly: a read or a write beyond them is the address sanitizer's to report.
TEST(DesTest, EveryLengthIsPaddedWithZerosAndPartialBlocksStayInside) {
  for (std::size_t length = 0; length <= 24; ++length) {
    const Bytes plain = pattern(length, 5);
    const Bytes padded = zeroPadded(plain);
    Bytes chained;  // CBC written out with ECB alone
    Bytes block = kDesIv;
    for (std::size_t at = 0; at < padded.size(); at += 8) {
      for (std::size_t i = 0; i < 8; ++i) block[i] ^= padded[at + i];
      block = crypt(kEncrypt, kEcb, block);
      chained.insert(chained.end(), block.begin(), block.end());
    }
    EXPECT_EQ(crypt(kEncrypt, kCbc, plain), chained) << length;
    EXPECT_EQ(crypt(kDecrypt, kCbc, chained), padded) << length;
    EXPECT_EQ(crypt(kDecrypt, kEcb, crypt(kEncrypt, kEcb, plain)), padded) << length;
    Bytes partial = crypt(kDecrypt, kCbc, padded);
    partial.resize(length);
    EXPECT_EQ(crypt(kDecrypt, kCbc, plain), partial) << length;
    Bytes out = {9};
    EXPECT_FALSE(DES().crypt(0, 2, kDesIv, plain, out, kDesKey) || DES().crypt(2, 1, kDesIv, plain, out, kDesKey));
    EXPECT_EQ(DES().crypt(kDecrypt, kEcb, {}, plain, out, kDesKey), length % 8 == 0);
    EXPECT_EQ(out == Bytes{9}, length % 8 != 0) << length;
  }
}

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
