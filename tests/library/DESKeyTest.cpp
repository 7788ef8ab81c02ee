// Both forms of the cipher beside libcrypto's: the chain of single blocks and the batches of lanes, whichever serves a
// length, and the lanes that other processors have. In pieces that go on where the last ended: fuzz/DesFuzz.
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

constexpr std::size_t kSpare = 24;      // behind what is ciphered: shows what is written beyond it
constexpr std::size_t kLongest = 2200;  // two batches and a bit

// Ciphers `input` at any alignment, in place or not. `written`: the bytes that this gives.
template <class Cipher>
Bytes ciphered(const Bytes& input, std::size_t written, const Cipher& cipher) {
  const std::size_t shift = randomBits() % 17;
  Bytes in(shift + std::max(input.size(), written) + kSpare, 0xEE);
  std::copy(input.begin(), input.end(), in.begin() + static_cast<std::ptrdiff_t>(shift));
  Bytes out(in.size(), 0xEE);
  Bytes& target = randomBits() % 2 == 0 ? in : out;
  cipher(in.data() + shift, target.data() + shift);
  const auto end = target.begin() + static_cast<std::ptrdiff_t>(shift + written);
  EXPECT_EQ(std::count(end, end + kSpare, 0xEE), kSpare);
  return {target.begin() + static_cast<std::ptrdiff_t>(shift), end};
}

TEST(DESKeyTest, EveryLengthAlignmentAndKeyGivesWhatLibcryptoGives) {
  using Data = unsigned char*;
  for (std::size_t length = 0; length <= kLongest; ++length) {
    SCOPED_TRACE(length);
    const tovr::DESBlock key = randomBlock();
    const tovr::DESBlock iv = randomBlock();
    const Bytes input = randomBytes(length);
    const Bytes whole = zeroPadded(input);
    const Bytes enciphered = chainedByLibcrypto(DES_ENCRYPT, key, iv, whole);
    Bytes deciphered = chainedByLibcrypto(DES_DECRYPT, key, iv, whole);
    deciphered.resize(length);
    const tovr::DESKey ready(key);
    const auto encrypt = [&](Data in, Data out) { ready.encryptCbc(in, length, out, iv); };
    const auto decrypt = [&](Data in, Data out) { ready.decryptCbc(in, length, out, iv); };
    EXPECT_TRUE(ciphered(input, whole.size(), encrypt) == enciphered);
    EXPECT_TRUE(ciphered(input, length, decrypt) == deciphered);
  }
}

// Whatever lanes a processor has.
template <class Lanes>
void expectLibcryptosAnswersOf() {
  using Parallel = tovr::ParallelDES<Lanes>;
  for (int i = 0; i < 20; ++i) {
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
    for (int i = 0; i < 50; ++i) {
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
