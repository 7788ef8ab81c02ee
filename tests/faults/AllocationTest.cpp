// Every allocation fails, in the library and in the engine: see OperationSweep. And what is released holds no payload.
#include <set>

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
    OperationSweep::SetUp();
  }
};

TEST_P(AllocationTest, EveryAllocationOfEveryOperation) {
  AllocationFaults faults;
  sweep(faults);
}

INSTANTIATE_TEST_SUITE_P(DatabaseTypes, AllocationTest, testing::Values(kByRectangle, kByName));

// Payloads pass through buffers of the library on their way; what it gives back to the allocator holds none of them.
// The buffers of the caller, and those that are the caller's from then on, live until the watch has ended.
class ReleasedMemoryTest : public DatabaseTest {
 protected:
  static constexpr Rect kScreen{0, 0, 299, 99};

  void SetUp() override {
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("wall", kScreen), kOk);
  }
  int secretsReleasedBy(const std::function<void()>& operation) {
    watchReleases(std::string(secretRow_ + 16, secretRow_ + 32));
    operation();
    const int seen = releasesSeen();
    watchReleases("");
    return seen;
  }
  // Queries a part of the stored block.
  int secretsReleasedByQuery(const Rect& rect) {
    CoefData record = coef(rect, cells_, 0);
    const int seen = secretsReleasedBy([&] { EXPECT_EQ(manager->queryData(&record), kOk); });
    delete[] record.coefBuffer.data;
    return seen;
  }
  template <class Record>
  Record over(unsigned char* bytes, std::size_t size) {
    Record record;
    record.data = bytes;
    record.dataSize = static_cast<std::uint32_t>(size);
    return record;
  }

  Bytes cells_ = pattern(300 * 100 * 4, 9);
  // Of the last piece that is enciphered: nothing overwrites it.
  const Bytes::iterator secretRow_ = cells_.begin() + 90 * 300 * 4;
};

TEST_F(ReleasedMemoryTest, IsWatched) {
  const std::string secret(secretRow_, secretRow_ + 64);
  EXPECT_GT(secretsReleasedBy([&] { delete new std::string(secret + secret); }), 0);
}

TEST_F(ReleasedMemoryTest, HoldsNoCellsOfBlocks) {
  CoefData area = coef(kScreen, cells_, 4);
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->insertData(&area), kOk); }), 0);
  EXPECT_EQ(secretsReleasedByQuery(kScreen), 0);
  EXPECT_EQ(secretsReleasedByQuery({2, 90, 20, 90}), 0);
  CoefDataTableOperate table;
  CoefBuffer block;
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(table.selectCoef(area.coefid, &block), kOk); }), 0);
  delete[] block.data;
}

TEST_F(ReleasedMemoryTest, HoldsNoGenericData) {
  auto data = over<ConfigData>(cells_.data(), cells_.size());
  data.datatype = 1;
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->insertData(&data), kOk); }), 0);
  data.data = nullptr;
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->queryData(&data), kOk); }), 0);
  delete[] data.data;
}

TEST_F(ReleasedMemoryTest, HoldsNoMeasurements) {
  auto measurement = over<LumChromaData>(&*secretRow_, 256);
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(manager->insertData(&measurement), SQLITE_CONSTRAINT); }), 0);
  LumChromaDataTableOperate table;
  EXPECT_EQ(secretsReleasedBy([&] { EXPECT_EQ(table.query(&measurement), kOk); }), 0);
}

}  // namespace tovrtest
