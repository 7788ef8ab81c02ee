// Every call of the connection fails once, at point 1, 2, 3 and so on: the code says so, what was stored stays, and
// the next call works.
#include "tests/Fixture.h"

namespace tovrtest {

constexpr Rect kKept{0, 0, 3, 3};
constexpr Rect kTarget{10, 10, 13, 13};

// The parameter is the database type.
class FaultTest : public DatabaseTest, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    createFile(GetParam());
    ASSERT_EQ(addScreen("kept", kKept) + addScreen("target", kTarget), 0);
    CoefData record = coef(kKept, kept, 2, "kept");
    ASSERT_EQ(manager->insertData(&record), 0);
  }

  // Runs `operation` with a fault at each of its calls in turn, and `check` after each. The operations begin with the
  // reading of the database type: without it (calls 1 and 2) the answer is 4111; once it is read, a failing end of
  // that statement (call 3) does no harm.
  void failEverywhere(const std::function<int()>& operation, const std::function<void()>& check) {
    host.connection.failAt(0);
    ASSERT_EQ(operation(), 0);
    const int calls = host.connection.calls;
    EXPECT_GT(calls, 3);
    for (int call = 1; call <= calls; ++call) {
      SCOPED_TRACE(call);
      host.connection.failAt(call);
      EXPECT_EQ(operation(), call == 3 ? 0 : call < 3 ? 4111 : FaultyConnection::kFault);
      host.connection.failAt(0);
      EXPECT_EQ(read(kKept, "kept"), (Read{0, kept}));
      check();
    }
    EXPECT_EQ(operation(), 0);
    check();
  }

  Bytes kept = pattern(32, 1);
};

TEST_P(FaultTest, InsertsOfNewAreasAndQueries) {
  int round = 0;
  Bytes cells = pattern(32, 2);
  const auto insert = [&] {  // always new: another screen name, or an area number that never matches
    CoefData record = coef(kTarget, cells, 2, "screen " + std::to_string(++round));
    record.areaid = 3;
    return manager->insertData(&record);
  };
  failEverywhere(insert, [] {});
  EXPECT_EQ(read(kTarget, "screen " + std::to_string(round)), (Read{0, cells}));
  failEverywhere([&] { return read(kKept, "kept").first; }, [] {});
}

TEST_P(FaultTest, InsertsAndUpdatesOfStoredAreas) {
  for (const auto operation : {&IDBManager::insertData, &IDBManager::updateData}) {
    Bytes cells = pattern(32, 3);
    Bytes old = cells;
    CoefData first = coef(kTarget, cells, 2, "target");
    ASSERT_EQ(manager->insertData(&first), 0);
    const auto write = [&] {
      cells = pattern(32, old[0] + 100U);
      CoefData record = coef(kTarget, cells, 2, "target");
      return (manager.get()->*operation)(&record);
    };
    failEverywhere(write, [&] {  // whole: the old block or the new one
      const Read now = read(kTarget, "target");
      EXPECT_TRUE(now == (Read{0, cells}) || now == (Read{0, old}));
      old = now.second;
    });
    EXPECT_EQ(old, cells);
    EXPECT_EQ(rows("select count(*) from Coef_Info"), "2\n");
  }
}

INSTANTIATE_TEST_SUITE_P(DatabaseTypes, FaultTest, testing::Values(0, 1));

using TableFaultTest = DatabaseTest;

TEST_F(TableFaultTest, ReadsOfWholeTables) {
  createFile(0);
  ASSERT_EQ(addScreen("", kKept), 0);
  for (const int type : {4, 5, 6}) {
    const std::unique_ptr<DataBase> result(manager->createData(type));
    host.connection.failAt(0);
    ASSERT_EQ(manager->queryData(result.get()), 0);
    for (int call = host.connection.calls; call >= 1; --call) {
      host.connection.failAt(call);
      EXPECT_EQ(manager->queryData(result.get()), FaultyConnection::kFault) << type << " " << call;
    }
  }
}

TEST_F(TableFaultTest, InsertsOfGenericData) {
  createFile(0);
  ASSERT_EQ(addScreen("", kKept), 0);
  ASSERT_EQ(insertData(1, pattern(9, 1)) + insertData(2, pattern(30, 2)), 0);
  host.connection.failAt(0);
  ASSERT_EQ(insertData(2, pattern(30, 3)), 0);
  const int calls = host.connection.calls;
  for (int call = 1; call <= calls; ++call) {
    SCOPED_TRACE(call);
    const Bytes next = pattern(30, static_cast<unsigned int>(call) + 10);
    host.connection.failAt(call);
    // The lookup (1) and the two deletions (prepare, step, reset, finalize each) do not stop the insertion.
    EXPECT_EQ(insertData(2, next), call <= 9 ? 0 : FaultyConnection::kFault);
    host.connection.failAt(0);
    EXPECT_EQ(readData(1), (Read{0, pattern(9, 1)}));
    ASSERT_EQ(insertData(2, next), 0);
    EXPECT_EQ(readData(2), (Read{0, next}));
    EXPECT_EQ(rows("select count(*) from DataInfo"), "2\n");
  }
}

// A value that could not be bound must never be stored as NULL without a word.
TEST_F(TableFaultTest, BindsOfEveryInsert) {
  createFile(0);
  ASSERT_EQ(addScreen("", kTarget), 0);
  Bytes cells = pattern(32, 4);
  const auto store = [&](int type) {
    const std::unique_ptr<DataBase> record(manager->createData(type));
    if (type == kCoefData) {
      CoefData area = coef(kTarget, cells, 2);
      area.areaid = 5;  // always a new area
      area.multilayerlist = {1, 2};
      static_cast<CoefData&>(*record) = area;
    }
    if (type == kScreenInfoData) static_cast<ScreenInfoData&>(*record).dbid = 1;
    return manager->insertData(record.get());
  };
  for (const int type : {kCoefData, kLumChromaData, kScreenInfoData, kConfigData, kDBInfo}) {
    host.connection.failBindAt(0);
    const int result = store(type);
    EXPECT_EQ(result, type == kLumChromaData ? 19 : 0);
    const int binds = host.connection.binds;
    EXPECT_GT(binds, 4);
    for (int bind = 1; bind <= binds; ++bind) {
      host.connection.failBindAt(bind);
      EXPECT_EQ(store(type), FaultyConnection::kFault) << "type " << type << ", bind " << bind;
    }
  }
}

}  // namespace tovrtest
