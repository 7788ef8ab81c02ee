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
  void expectClean(const std::string& name, int code, const std::function<int()>& operation) {
    watchReleases(secret);
    EXPECT_EQ(operation(), code) << name;
    EXPECT_EQ(releasesSeen(), 0) << name;
    watchReleases("");
  }

  Bytes cells = pattern(300 * 100 * 4, 9);
  unsigned char* const row = &cells[90 * 300 * 4];  // of the last piece that is enciphered: nothing overwrites it
  const std::string secret{row + 16, row + 32};
};

INSTANTIATE_TEST_SUITE_P(OwnCipher, ReleasedMemoryTest, testing::Bool());

TEST_P(ReleasedMemoryTest, IsWatched) {
  watchReleases(secret);
  delete new std::string(secret + secret);
  EXPECT_GT(releasesSeen(), 0);
}

TEST_P(ReleasedMemoryTest, HoldsNoPayload) {
  CoefData area = coef(kScreen, cells, 4);
  expectClean("a block stored", kOk, [&] { return manager->insertData(&area); });
  for (const Rect& part : {kScreen, Rect{2, 90, 20, 90}}) {
    CoefData record = coef(part, cells, 0);
    expectClean("a block read", kOk, [&] { return manager->queryData(&record); });
    delete[] record.coefBuffer.data;
  }
  CoefBuffer block;
  expectClean("a block read whole", kOk, [&] { return CoefDataTableOperate().selectCoef(area.coefid, &block); });
  delete[] block.data;
  ConfigData data;
  data.datatype = 1;
  data.data = cells.data();
  data.dataSize = static_cast<std::uint32_t>(cells.size());
  expectClean("generic data stored", kOk, [&] { return manager->insertData(&data); });
  expectClean("generic data read", kOk, [&] { return manager->queryData(&data); });
  delete[] data.data;
  LumChromaData measurement;
  measurement.data = row;
  measurement.dataSize = 256;
  expectClean("a measurement stored", SQLITE_CONSTRAINT, [&] { return manager->insertData(&measurement); });
  expectClean("measurements printed", kOk, [&] { return LumChromaDataTableOperate().query(&measurement); });
}

}  // namespace tovrtest
