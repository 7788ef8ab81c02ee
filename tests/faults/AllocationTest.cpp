// Every allocation fails, in the library and in the engine: see OperationSweep. And what is released holds no payload.
#include <set>

#include "storage/BlobCipher.h"
#include "tables/CoefDataTableOperate.h"
#include "tables/LumChromaDataTableOperate.h"
#include "tests/faults/FaultyAllocator.h"
#include "tests/faults/OperationSweep.h"

namespace tovrtest {

class AllocationFaults final : public FaultSource {
 public:
  void arm(const Operation& operation, int point, Failing how) override {
    setEngineFails(!operation.derivesKey);  // SQLCipher crashes where it finds no memory for a key
    allocations().arm(point, how);
  }
  bool disarm() override {
    allocations().disarm();
    return allocations().met;
  }
  // The engine passes over some; then the operation has done its work, which the sweep has looked at.
  void expectCode(const Operation& operation, int code) override {
    const std::set<int> documented = {operation.success, kThrown, 2, 7, 4106, 4111, -2};
    EXPECT_TRUE(documented.count(code) == 1) << code;
  }
};

class AllocationTest : public OperationSweep {
 protected:
  void SetUp() override {
    ASSERT_TRUE(engineAllocatesHere());
    serveEncryption(host.cipher);  // the library's own, which works in pieces
    OperationSweep::SetUp();
  }
};

TEST_P(AllocationTest, EveryAllocationOfEveryOperation) {
  AllocationFaults faults;
  sweep(faults);
}

INSTANTIATE_TEST_SUITE_P(DatabaseTypes, AllocationTest, testing::Values(0, 1));

// Payloads pass through buffers of the library on their way; what it gives back to the allocator holds none of them.
// The buffers of the caller, and those that are the caller's from then on, live until the end.
class ReleasedMemoryTest : public DatabaseTest, public testing::WithParamInterface<bool> {};

TEST_P(ReleasedMemoryTest, HoldsNoPayload) {
  if (GetParam()) serveEncryption(host.cipher);
  createFile(0);
  ASSERT_EQ(addScreen("wall", {0, 0, 299, 99}), 0);
  Bytes cells = pattern(300 * 100 * 4, 9);
  const auto row = cells.begin() + 90 * 300 * 4;  // of the last piece that is enciphered: nothing overwrites it
  const std::string secret(row + 16, row + 32);
  CoefData area = coef({0, 0, 299, 99}, cells, 4, "wall");
  ConfigData data;
  data.datatype = 1;
  data.data = cells.data();
  data.dataSize = static_cast<std::uint32_t>(cells.size());
  CoefData whole = coef(rectOf(area), cells, 0, "wall");
  CoefData window = coef({2, 90, 20, 90}, cells, 0, "wall");
  ConfigData read;
  read.datatype = 1;
  CoefBuffer block;
  CoefDataTableOperate operate;
  LumChromaDataTableOperate measurements;
  LumChromaData measurement;
  measurement.data = &*row;
  measurement.dataSize = 256;

  const auto released = [](const std::string& watched, const std::function<int()>& operation) {
    watchReleases(watched);
    EXPECT_EQ(operation(), 0);
    const int seen = releasesSeen();
    watchReleases("");
    return seen;
  };
  EXPECT_EQ(released(secret, [&] { return manager->insertData(&area); }), 0);
  EXPECT_EQ(released(secret, [&] { return manager->queryData(&whole); }), 0);
  EXPECT_EQ(released(secret, [&] { return manager->queryData(&window); }), 0);
  EXPECT_EQ(released(secret, [&] { return operate.selectCoef(area.coefid, &block); }), 0);
  EXPECT_EQ(released(secret, [&] { return manager->insertData(&data); }), 0);
  EXPECT_EQ(released(secret, [&] { return manager->queryData(&read); }), 0);
  EXPECT_EQ(released(secret, [&] { return manager->insertData(&measurement) - 19; }), 0);
  EXPECT_EQ(released(secret, [&] { return measurements.query(&measurement); }), 0);
  EXPECT_GT(released(secret, [&] { return delete new std::string(secret + secret), 0; }), 0) << "the watch is blind";
  for (const unsigned char* made : {whole.coefBuffer.data, window.coefBuffer.data, read.data, block.data})
    delete[] made;
}

INSTANTIATE_TEST_SUITE_P(ServiceOfTheLibrary, ReleasedMemoryTest, testing::Bool());

TEST(BlobAllocationTest, ABlockIsDoneWholeOrNotAtAllAndTheFirstCallReadiesTheKey) {
  const Bytes payload = pattern(200000, 5);
  Bytes blob;
  {
    Encryption encryption;
    ASSERT_TRUE(encipherPayload(encryption, payload.data(), 200000, blob));
  }
  const auto everyAllocation = [](const std::function<void()>& operation, const std::function<void()>& afterFailure) {
    for (int point = 1;; ++point) {
      allocations().arm(point);
      try {
        operation();
        allocations().disarm();
        return point - 1;
      } catch (const std::bad_alloc&) {
        allocations().disarm();
        afterFailure();
      }
    }
  };
  Bytes stored = {9};
  Encryption enciphering;
  const auto encipher = [&] { EXPECT_TRUE(encipherPayload(enciphering, payload.data(), 200000, stored)); };
  EXPECT_EQ(everyAllocation(encipher, [&] { EXPECT_EQ(stored, Bytes{9}); }), 2);
  EXPECT_TRUE(stored == blob);
  Bytes read = {9};
  Encryption deciphering;
  const auto decipher = [&] { EXPECT_TRUE(decipherPayload(deciphering, blob.data(), blob.size(), read)); };
  EXPECT_EQ(everyAllocation(decipher, [&] { EXPECT_EQ(read, Bytes{9}); }), 2);
  EXPECT_TRUE(read == payload);
}

}  // namespace tovrtest
