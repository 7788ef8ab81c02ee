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

using Operation = void (tovr::DESKey::*)(const unsigned char*, std::size_t, unsigned char*, tovr::DESBlock) const;

constexpr std::size_t kSpare = 24;  // behind what is ciphered: shows what is written there
constexpr std::size_t kLongest = 4200;

// Ciphers `input` in a buffer where it begins at `shift`, and the result does too: in place or elsewhere.
void expectCiphered(const tovr::DESKey& key, Operation cipher, const tovr::DESBlock& iv, const Bytes& input,
                    const Bytes& expected, bool inPlace) {
  const std::size_t shift = randomBits() % 17;
  Bytes in(shift + std::max(input.size(), expected.size()) + kSpare, 0xEE);
  std::copy(input.begin(), input.end(), in.begin() + static_cast<std::ptrdiff_t>(shift));
  Bytes out = inPlace ? in : Bytes(in.size(), 0xEE);
  (key.*cipher)(inPlace ? out.data() + shift : in.data() + shift, input.size(), out.data() + shift, iv);
  const auto begin = out.begin() + static_cast<std::ptrdiff_t>(shift);
  const auto end = begin + static_cast<std::ptrdiff_t>(expected.size());
  EXPECT_TRUE(Bytes(begin, end) == expected) << input.size() << " bytes" << (inPlace ? " in place" : "");
  EXPECT_EQ(std::count(end, end + kSpare, 0xEE), kSpare) << input.size() << " bytes" << (inPlace ? " in place" : "");
}

// Cut into pieces, they are fuzz/DesFuzz's to test.
TEST(DESKeyTest, EveryLengthAlignmentAndKeyGivesWhatLibcryptoGives) {
  for (std::size_t length = 0; length <= kLongest; ++length) {
    const tovr::DESBlock key = randomBlock();
    const tovr::DESBlock iv = randomBlock();
    const Bytes input = randomBytes(length);
    const Bytes enciphered = chainedByLibcrypto(DES_ENCRYPT, key, iv, zeroPadded(input));
    Bytes deciphered = chainedByLibcrypto(DES_DECRYPT, key, iv, zeroPadded(input));
    deciphered.resize(length);
    const tovr::DESKey ready(key);
    for (const bool inPlace : {false, true}) {
      expectCiphered(ready, &tovr::DESKey::encryptCbc, iv, input, enciphered, inPlace);
      expectCiphered(ready, &tovr::DESKey::decryptCbc, iv, input, deciphered, inPlace);
    }
  }
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
  const auto work = [&](const std::string& key) {
    const Bytes plain = pattern(1504, 1);
    Bytes first;
    shared.encrypt(key, key, plain, first);
    for (int i = 0; i < 200; ++i) {
      Bytes enciphered;
      Bytes back;
      shared.encrypt(key, key, plain, enciphered);
      shared.decrypt(key, key, enciphered, back);
      if (enciphered != first || back != plain) ++wrong;
    }
  };
  std::vector<std::thread> threads;
  for (const char* key : {"a", "b", "c", "d"}) threads.emplace_back(work, key);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace tovrtest
