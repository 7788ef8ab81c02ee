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
    const std::set<int> documented = {operation.success, kThrown,       SQLITE_NOMEM, kUnknownDatabaseType,
                                      kTypeNotGiven,     kCipherFailed, kNotChecked};
    EXPECT_EQ(documented.count(code), 1U) << "code " << code;
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

INSTANTIATE_TEST_SUITE_P(DatabaseTypes, AllocationTest, testing::Values(kByRectangle, kByName));

// Payloads pass through buffers of the library on their way; what it gives back to the allocator holds none of them,
// with the library's own cipher and with another. The buffers of the caller, and those that are the caller's from then
// on, live until the watch has ended.
class ReleasedMemoryTest : public DatabaseTest, public testing::WithParamInterface<bool> {
 protected:
  static constexpr Rect kScreen{0, 0, 299, 99};

  void SetUp() override {
    if (GetParam()) serveEncryption(host.cipher);
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("", kScreen), kOk);
  }
  int secretsReleasedBy(const std::function<void()>& operation) {
    watchReleases(secret);
    operation();
    const int seen = releasesSeen();
    watchReleases("");
    return seen;
  }

  Bytes cells = pattern(300 * 100 * 4, 9);
  unsigned char* const row = &cells[90 * 300 * 4];  // of the last piece that is enciphered: nothing overwrites it
  const std::string secret{row + 16, row + 32};
};

INSTANTIATE_TEST_SUITE_P(OwnCipher, ReleasedMemoryTest, testing::Bool());

TEST_P(ReleasedMemoryTest, IsWatched) {
  EXPECT_GT(secretsReleasedBy([&] { delete new std::string(secret + secret); }), 0);
}

TEST_P(ReleasedMemoryTest, HoldsNoCellsOfBlocks) {
  CoefData area = coef(kScreen, cells, 4);
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->insertData(&area), kOk); }), 0);
  for (const Rect& part : {kScreen, Rect{2, 90, 20, 90}}) {
    CoefData record = coef(part, cells, 0);
    EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->queryData(&record), kOk); }), 0);
    delete[] record.coefBuffer.data;
  }
  CoefDataTableOperate table;
  CoefBuffer block;
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(table.selectCoef(area.coefid, &block), kOk); }), 0);
  delete[] block.data;
}

TEST_P(ReleasedMemoryTest, HoldsNoGenericData) {
  ConfigData data;
  data.datatype = 1;
  data.data = cells.data();
  data.dataSize = static_cast<std::uint32_t>(cells.size());
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->insertData(&data), kOk); }), 0);
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->queryData(&data), kOk); }), 0);
  delete[] data.data;
}

TEST_P(ReleasedMemoryTest, HoldsNoMeasurements) {
  LumChromaData measurement;
  measurement.data = row;
  measurement.dataSize = 256;
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->insertData(&measurement), SQLITE_CONSTRAINT); }), 0);
  LumChromaDataTableOperate table;
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(table.query(&measurement), kOk); }), 0);
}

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
