// The manager's routing, its record factory, and opening, checking and closing files.
#include <climits>

#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr DataType kAllTypes[] = {kCoefData, kLumChromaData,  kScreenInfoData,      kConfigData,
                                  kDBInfo,   kCoefDataResult, kScreenInfoDataResult};
constexpr int kUnknownTypes[] = {7, -1, INT_MIN, INT_MAX};
constexpr Rect kNotGiven{-1, -1, -1, -1};

TEST_F(ManagerTest, RecordsAreMadeByTheirCodes) {
  for (const DataType type : kAllTypes) {
    const std::unique_ptr<DataBase> record(manager->createData(type));
    EXPECT_EQ(record->type, type);
  }
}

TEST_F(ManagerTest, CreateDataOutsideItsCodesEndsTheProcess) {
  for (const int type : kUnknownTypes) EXPECT_DEATH(manager->createData(type), "") << type;
}

TEST_F(ManagerTest, RecordsComeWithTheirDefaults) {
  const CoefData coef;
  EXPECT_EQ(coef.coeftype, kDataTypeNotGiven);
  EXPECT_EQ(coef.areaid, -1);
  EXPECT_EQ(coef.areaIndex, 0);
  EXPECT_EQ(rectOf(coef), kNotGiven);
  EXPECT_EQ(coef.multilayersize, 0);
  const LumChromaData measurement;
  EXPECT_EQ(measurement.datatype, kDataTypeNotGiven);
  EXPECT_EQ(rectOf(measurement), kNotGiven);
  const ScreenInfoData screen;
  EXPECT_EQ(screen.areaid, -1);
  EXPECT_EQ(rectOf(screen), kNotGiven);
  EXPECT_EQ(ConfigData().datatype, kDataTypeNotGiven);
}

TEST_F(ManagerTest, NullRecordsAreRefused) {
  EXPECT_EQ(manager->queryData(nullptr), kInvalidRecord);
  EXPECT_EQ(manager->insertData(nullptr), kInvalidRecord);
  EXPECT_EQ(manager->deleteData(nullptr), kInvalidRecord);
  EXPECT_EQ(manager->updateData(nullptr), kInvalidRecord);
}

// A record of another class than its type says shows where it is routed: an operator refuses it.
TEST_F(DatabaseTest, RecordsReachTheOperatorOfTheirTypeAndOthersSucceedSilently) {
  createFile(kByRectangle);
  const struct {
    DataType type;
    int query, insert, update;
  } cases[] = {{kCoefData, kInvalidRecord, kInvalidRecord, kInvalidRecord},
               {kLumChromaData, kOk, kInvalidRecord, kOk},
               {kScreenInfoData, kInvalidRecord, kInvalidRecord, kInvalidRecord},
               {kConfigData, kInvalidRecord, kInvalidRecord, kOk},
               {kDBInfo, kInvalidRecord, kInvalidRecord, kOk},
               {kCoefDataResult, kInvalidRecord, kOk, kInvalidRecord},
               {kScreenInfoDataResult, kInvalidRecord, kOk, kOk}};
  for (const auto& c : cases) {
    DataBase record(c.type);
    EXPECT_EQ(manager->queryData(&record), c.query) << c.type;
    EXPECT_EQ(manager->insertData(&record), c.insert) << c.type;
    EXPECT_EQ(manager->updateData(&record), c.update) << c.type;
  }
  EXPECT_EQ(countOf("Data"), 0);
  EXPECT_EQ(countOf("DB_Info"), 1);
}

TEST_F(ManagerTest, WhatIsRoutedNowhereNeedsNoConnection) {
  const auto recordOf = [](int type) {
    DBInfo record;
    record.type = type;
    return record;
  };
  for (const int type : kUnknownTypes) {
    DBInfo record = recordOf(type);
    EXPECT_EQ(manager->queryData(&record), kOk) << type;
    EXPECT_EQ(manager->insertData(&record), kOk) << type;
    EXPECT_EQ(manager->updateData(&record), kOk) << type;
    EXPECT_EQ(manager->deleteData(&record), kNoOperator) << type;
  }
  DBInfo data = recordOf(kConfigData);
  EXPECT_EQ(manager->updateData(&data), kOk);
  EXPECT_EQ(manager->deleteData(&data), kOk);
  EXPECT_EQ(host.points.passed, 0) << "calls of the services";
}

TEST_F(ManagerTest, OpenSetsTwoPragmasAndTellsWhyAFileCannotBeOpened) {
  ASSERT_EQ(manager->openDB(path("a.db"), kRawKey), kOk);
  EXPECT_EQ(host.connection.statements,
            (std::vector<std::string>{"PRAGMA foreign_keys = ON", "PRAGMA synchronous = OFF"}));
  EXPECT_EQ(manager->openDB(path("no folder/a.db"), kRawKey), SQLITE_CANTOPEN);
  EXPECT_STREQ(manager->errMsg(), "unable to open database file");
}

TEST_F(ManagerTest, CheckWantsTheBuiltInKeyAndThePlacementTable) {
  EXPECT_FALSE(manager->checkDB(path("no folder/a.db")));
  EXPECT_FALSE(manager->checkDB(path("empty.db")));
  EXPECT_EQ(lastStatement(), "select * from Coef_Info");
  ASSERT_EQ(manager->openDB(path("other key.db"), kRawKey), kOk);
  ASSERT_EQ(manager->createTables(), kOk);
  EXPECT_FALSE(manager->checkDB(path("other key.db")));
  ASSERT_EQ(manager->openDB(path("a.db"), "brimstoquelvard"), kOk);
  ASSERT_EQ(manager->createTables(), kOk);
  EXPECT_TRUE(manager->checkDB(path("a.db")));
  EXPECT_STREQ(manager->errMsg(), "no database file is open") << "the check has closed the file, statement and all";
}

class WrongKeyTest : public DatabaseTest {
 protected:
  void SetUp() override {
    createFile(kByRectangle);
    ASSERT_EQ(manager->closeDB(), kOk);
    wrongKey[3] = 'F';
  }
  std::string wrongKey = kRawKey;
};

// The first read is that of the second pragma, which wants the schema.
TEST_F(WrongKeyTest, FailsAtTheFirstReadAndFromThereOn) {
  EXPECT_EQ(manager->openDB(path("file.db"), wrongKey), SQLITE_NOTADB);
  EXPECT_EQ(lastStatement(), "PRAGMA synchronous = OFF");
  EXPECT_EQ(manager->getDBType(), kUnknownDatabaseType);
  for (const DataType type : {kDBInfo, kCoefDataResult, kScreenInfoDataResult}) {
    const std::unique_ptr<DataBase> record(manager->createData(type));
    EXPECT_EQ(manager->queryData(record.get()), SQLITE_NOTADB) << type;
  }
  EXPECT_EQ(manager->createTables(), SQLITE_NOTADB);
  EXPECT_EQ(manager->closeDB(), kOk);
}

TEST_F(WrongKeyTest, LeavesTheFileAlone) {
  const Bytes before = contentOf(path("file.db"));
  EXPECT_NE(std::string(before.begin(), before.begin() + 6), "SQLite");
  EXPECT_EQ(manager->openDB(path("file.db"), wrongKey), SQLITE_NOTADB);
  EXPECT_EQ(manager->createTables(), SQLITE_NOTADB);
  EXPECT_EQ(manager->closeDB(), kOk);
  EXPECT_EQ(contentOf(path("file.db")), before);
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
  EXPECT_EQ(manager->getDBType(), kByRectangle);
}

TEST_F(ManagerTest, ClosingTwiceAndClosingWhatCouldNotBeOpenedSucceeds) {
  ASSERT_EQ(manager->openDB(path("a.db"), kRawKey), kOk);
  EXPECT_EQ(manager->closeDB(), kOk);
  EXPECT_EQ(manager->closeDB(), kOk);
  EXPECT_EQ(manager->openDB(path("no folder/a.db"), kRawKey), SQLITE_CANTOPEN);
  EXPECT_EQ(manager->closeDB(), kOk);
}

}  // namespace tovrtest
