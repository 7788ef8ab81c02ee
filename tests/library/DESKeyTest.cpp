// Both forms of the cipher beside libcrypto's: the chain of single blocks and the batches of lanes, whichever serves a
// length, and the lanes that other processors have.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/des.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <random>
#include <thread>

#include "crypto/DES.h"
#include "crypto/DESKey.h"
#include "crypto/ParallelDES.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

std::mt19937_64 randomBits(1);

Bytes randomBytes(std::size_t size) {
  Bytes bytes(size);
  for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(randomBits());
  return bytes;
}

tovr::DESBlock randomBlock() { return tovr::DESBlock::firstOf(randomBytes(8).data(), 8); }

// As libcrypto chains `blocks`, whole ones.
Bytes chainedByLibcrypto(int direction, tovr::DESBlock key, tovr::DESBlock iv, Bytes blocks) {
  DES_key_schedule schedule;
  DES_set_key_unchecked(&key.bytes, &schedule);
  DES_ncbc_encrypt(blocks.data(), blocks.data(), static_cast<long>(blocks.size()), &schedule, &iv.bytes, direction);
  return blocks;
}

constexpr std::size_t kSpare = 24;  // around what is ciphered: shows what is written beside it
constexpr std::size_t kLongest = 4200;

// Ciphers `input` at any alignment, in place or not. `written`: the bytes that this gives.
template <class Cipher>
Bytes ciphered(const Bytes& input, std::size_t written, const Cipher& cipher) {
  const std::size_t shift = randomBits() % 17;
  const bool inPlace = randomBits() % 2 == 0;
  Bytes in(shift);
  in.insert(in.end(), input.begin(), input.end());
  in.resize(shift + std::max(input.size(), written) + kSpare, 0xEE);
  Bytes out = inPlace ? in : Bytes(in.size(), 0xEE);
  cipher(inPlace ? out.data() + shift : in.data() + shift, out.data() + shift);
  const auto end = out.begin() + static_cast<std::ptrdiff_t>(shift + written);
  EXPECT_EQ(std::count(end, end + kSpare, 0xEE), kSpare);
  return {out.begin() + static_cast<std::ptrdiff_t>(shift), end};
}

TEST(DESKeyTest, EveryLengthAlignmentAndKeyGivesWhatLibcryptoGives) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const tovr::DESBlock key = randomBlock();
    const tovr::DESBlock iv = randomBlock();
    const Bytes input = randomBytes(length);
    Bytes whole = input;
    whole.resize((length + 7) / 8 * 8);
    const Bytes enciphered = chainedByLibcrypto(DES_ENCRYPT, key, iv, whole);
    Bytes deciphered = chainedByLibcrypto(DES_DECRYPT, key, iv, whole);
    deciphered.resize(length);
    const tovr::DESKey ready(key);
    EXPECT_TRUE(ciphered(input, whole.size(),
                         [&](const unsigned char* in, unsigned char* out) { ready.encryptCbc(in, length, out, iv); }) ==
                enciphered)
        << length;
    EXPECT_TRUE(ciphered(input, length,
                         [&](const unsigned char* in, unsigned char* out) { ready.decryptCbc(in, length, out, iv); }) ==
                deciphered)
        << length;
  }
}

TEST(DESKeyTest, PiecesGoOnWithTheLastCipherBlock) {
  const tovr::DESBlock key = randomBlock();
  const Bytes plain = randomBytes(20000);
  const tovr::DESKey ready(key);
  tovr::DESBlock enciphering = randomBlock();
  tovr::DESBlock deciphering = enciphering;
  const Bytes whole = chainedByLibcrypto(DES_ENCRYPT, key, enciphering, plain);
  Bytes pieces(plain.size());
  Bytes back(plain.size());
  for (std::size_t at = 0, size = 0; at < plain.size(); at += size) {
    size = std::min(plain.size() - at, randomBits() % 400 * 8 + 8);
    ready.encryptCbc(plain.data() + at, size, pieces.data() + at, enciphering);
    ready.decryptCbc(pieces.data() + at, size, back.data() + at, deciphering);
    enciphering = deciphering = tovr::DESBlock::firstOf(pieces.data() + at + size - 8, 8);
  }
  EXPECT_TRUE(pieces == whole);
  EXPECT_TRUE(back == plain);
}

// Whatever lanes a processor has.
template <class Lanes>
void expectLibcryptosAnswersOf() {
  using Parallel = tovr::ParallelDES<Lanes>;
  for (int i = 0; i < 50; ++i) {
    const tovr::DESBlock key = randomBlock();
    const tovr::DESBlock iv = randomBlock();
    Bytes blocks = randomBytes(3 * Parallel::kBatchSize);
    const Bytes plain = chainedByLibcrypto(DES_DECRYPT, key, iv, blocks);
    typename Lanes::Lane keys[Parallel::kKeyLanes];
    Parallel::makeKeyLanes(tovr::DESSchedule(key), keys);
    Parallel parallel(keys);
    tovr::DESBlock chain = iv;
    for (auto at = blocks.data(); at < blocks.data() + blocks.size(); at += Parallel::kBatchSize) {
      parallel.decipher(at, at, chain.bytes);
    }
    EXPECT_TRUE(blocks == plain);
  }
}

TEST(DESKeyTest, LanesOfEveryKindGiveWhatLibcryptoGives) {
  expectLibcryptosAnswersOf<tovr::NativeLanes>();
  expectLibcryptosAnswersOf<tovr::WordLanes>();
#if defined(TOVR_LANES_OF_VECTORS)
  expectLibcryptosAnswersOf<tovr::VectorLanes>();
#endif
}

TEST(DESKeyTest, ThreadsThatShareACipherEachGetTheirOwnKey) {
  const DES shared;
  std::atomic<int> wrong{0};
  const auto work = [&](char name) {
    const std::string key(8, name);
    const Bytes plain(1504, 7);
    Bytes expected;
    DES().encrypt(key, key, plain, expected);
    for (int i = 0; i < 200; ++i) {
      Bytes enciphered;
      Bytes back;
      shared.encrypt(key, key, plain, enciphered);
      shared.decrypt(key, key, enciphered, back);
      if (enciphered != expected || back != plain) ++wrong;
    }
  };
  std::vector<std::thread> threads;
  for (const char name : {'a', 'b', 'c', 'd'}) threads.emplace_back(work, name);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace tovrtest
