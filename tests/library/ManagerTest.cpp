// The manager's routing, its record factory, and opening, checking and closing files.
#include <climits>

#include "manager/DBManager.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

TEST_F(ManagerTest, RecordsComeWithTheirDefaults) {
  std::unique_ptr<DataBase> made[7];
  for (int type = 0; type <= 6; ++type) {
    made[type].reset(manager->createData(type));
    EXPECT_EQ(made[type]->type, type);
  }
  const auto& coef = dynamic_cast<const CoefData&>(*made[0]);
  const auto& measurement = dynamic_cast<const LumChromaData&>(*made[1]);
  const auto& screen = dynamic_cast<const ScreenInfoData&>(*made[2]);
  EXPECT_TRUE(rectOf(coef) == (Rect{-1, -1, -1, -1}) && rectOf(measurement) == rectOf(coef) &&
              rectOf(screen) == rectOf(coef));
  EXPECT_EQ(std::vector<int>({coef.coeftype, coef.areaid, coef.areaIndex, coef.multilayersize, measurement.datatype,
                              screen.areaid, dynamic_cast<const ConfigData&>(*made[3]).datatype}),
            std::vector<int>({16, -1, 0, 0, 16, -1, 16}));
}

TEST_F(ManagerTest, CreateDataOutsideItsCodesEndsTheProcess) {
  for (const int type : {7, -1, INT_MIN, INT_MAX}) EXPECT_DEATH(manager->createData(type), "") << type;
}

TEST_F(ManagerTest, NullRecordsAreRefusedAndUnroutedTypesSucceedSilently) {
  for (const auto operation :
       {&IDBManager::queryData, &IDBManager::insertData, &IDBManager::deleteData, &IDBManager::updateData}) {
    EXPECT_EQ((manager.get()->*operation)(nullptr), 4096);
  }
  const auto silent = [&](int (IDBManager::*operation)(DataBase*), std::initializer_list<int> types) {
    for (const int type : types) {
      DBInfo record;
      record.type = type;
      EXPECT_EQ((manager.get()->*operation)(&record), 0) << type;
    }
  };
  silent(&IDBManager::queryData, {1, 7, -1});
  silent(&IDBManager::insertData, {5, 6, 7, -1});
  silent(&IDBManager::updateData, {1, 3, 4, 6, 7, -1});
  silent(&IDBManager::deleteData, {3});
  EXPECT_EQ(host.points.passed, 0);
  for (const int type : {7, -1, INT_MAX}) {
    DBInfo record;
    record.type = type;
    EXPECT_EQ(manager->deleteData(&record), 4104);
  }
}

TEST_F(DatabaseTest, RecordsOfAnotherClassAreRefusedUntouched) {
  createFile(0);
  for (int type = 0; type <= 6; ++type) {
    DataBase record(static_cast<DataType>(type));
    EXPECT_EQ(manager->queryData(&record), type == 1 ? 0 : 4096) << type;
    EXPECT_EQ(manager->insertData(&record), type >= 5 ? 0 : 4096) << type;
    const bool routed = type == 0 || type == 2 || type == 5;
    EXPECT_EQ(manager->updateData(&record), routed ? 4096 : 0) << type;
  }
  EXPECT_EQ(rows("select (select count(*) from Data), (select count(*) from DB_Info)"), "0|1\n");
}

TEST_F(ManagerTest, OpenRunsItsFourStepsAndStopsAtTheFirstThatFails) {
  ASSERT_EQ(manager->openDB(path("a.db"), kRawKey), 0);
  const std::vector<std::string> pragmas = {"PRAGMA foreign_keys = ON", "PRAGMA synchronous = OFF"};
  EXPECT_EQ(host.connection.statements, pragmas);
  EXPECT_EQ(host.points.passed, 4);
  for (int call = 1; call <= 4; ++call) {
    host.points.arm(call);
    EXPECT_EQ(manager->openDB(path("a.db"), kRawKey), FaultyConnection::kFault);
    EXPECT_EQ(host.points.passed, call);
  }
  EXPECT_EQ(manager->openDB(path("no folder/a.db"), kRawKey), 14);
  EXPECT_STREQ(manager->errMsg(), "unable to open database file");
}

TEST_F(ManagerTest, CheckWantsTheBuiltInKeyAndThePlacementTable) {
  EXPECT_FALSE(manager->checkDB(path("no folder/a.db")));
  EXPECT_FALSE(manager->checkDB(path("empty.db")));
  EXPECT_EQ(host.connection.statements.back(), "select * from Coef_Info");
  ASSERT_EQ(manager->openDB(path("a.db"), "brimstoquelvard"), 0);
  ASSERT_EQ(manager->createTables(), 0);
  EXPECT_TRUE(manager->checkDB(path("a.db")));
  EXPECT_STREQ(manager->errMsg(), "no database file is open");  // the check has closed it, statement and all
  ASSERT_EQ(manager->openDB(path("b.db"), kRawKey), 0);
  ASSERT_EQ(manager->createTables(), 0);
  EXPECT_FALSE(manager->checkDB(path("b.db")));
}

// The first read is that of the second pragma, which wants the schema.
TEST_F(DatabaseTest, WrongKeyShowsAtTheFirstReadAndLeavesTheFileAlone) {
  createFile(0);
  ASSERT_EQ(manager->closeDB(), 0);
  const Bytes before = contentOf(path("file.db"));
  EXPECT_NE(std::string(before.begin(), before.begin() + 6), "SQLite");
  std::string other = kRawKey;
  other[3] = 'F';
  EXPECT_EQ(manager->openDB(path("file.db"), other), 26);
  EXPECT_EQ(host.connection.statements.back(), "PRAGMA synchronous = OFF");
  EXPECT_EQ(manager->getDBType(), 2);
  for (const int type : {4, 5, 6}) {
    EXPECT_EQ(manager->queryData(std::unique_ptr<DataBase>(manager->createData(type)).get()), 26);
  }
  EXPECT_EQ(manager->createTables(), 26);
  EXPECT_EQ(manager->closeDB(), 0);
  EXPECT_EQ(contentOf(path("file.db")), before);
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
  EXPECT_EQ(manager->getDBType(), 0);
}

TEST_F(ManagerTest, ClosingTwiceAndClosingWhatCouldNotBeOpenedSucceeds) {
  ASSERT_EQ(manager->openDB(path("a.db"), kRawKey), 0);
  EXPECT_EQ(manager->closeDB(), 0);
  EXPECT_EQ(manager->closeDB(), 0);
  EXPECT_EQ(manager->openDB(path("no folder/a.db"), kRawKey), 14);
  EXPECT_EQ(manager->closeDB(), 0);
}

}  // namespace tovrtest
