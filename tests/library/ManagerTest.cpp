// The manager's routing, its record factory, and opening, checking and closing files.
#include <climits>

#include "tests/support/Files.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr int kUnknownTypes[] = {7, -1, INT_MIN, INT_MAX};
constexpr Rect kNotGiven{-1, -1, -1, -1};

TEST_F(ManagerTest, CreateDataOutsideItsCodesEndsTheProcess) {
  for (const int type : kUnknownTypes) EXPECT_DEATH(manager->createData(type), "") << type;
}

TEST_F(ManagerTest, RecordsComeWithNothingGiven) {
  EXPECT_EQ(CoefData().coeftype, kDataTypeNotGiven);
  EXPECT_EQ(CoefData().areaid, -1);
  EXPECT_EQ(rectOf(CoefData()), kNotGiven);
  EXPECT_EQ(LumChromaData().datatype, kDataTypeNotGiven);
  EXPECT_EQ(rectOf(LumChromaData()), kNotGiven);
  EXPECT_EQ(ScreenInfoData().areaid, -1);
  EXPECT_EQ(rectOf(ScreenInfoData()), kNotGiven);
  EXPECT_EQ(ConfigData().datatype, kDataTypeNotGiven);
}

TEST_F(ManagerTest, NullRecordsAreRefused) {
  EXPECT_EQ(manager->queryData(nullptr), kInvalidRecord);
  EXPECT_EQ(manager->insertData(nullptr), kInvalidRecord);
  EXPECT_EQ(manager->deleteData(nullptr), kInvalidRecord);
  EXPECT_EQ(manager->updateData(nullptr), kInvalidRecord);
}

TEST_F(DatabaseTest, RecordsOfAnotherClassThanTheirTypeSaysAreRefused) {
  createFile(kByRectangle);
  for (const DataType type : {kCoefData, kScreenInfoData, kConfigData, kDBInfo, kCoefDataResult}) {
    DataBase record(type);
    EXPECT_EQ(manager->queryData(&record), kInvalidRecord) << type;
  }
  for (const DataType type : {kCoefData, kLumChromaData, kScreenInfoData, kConfigData, kDBInfo}) {
    DataBase record(type);
    EXPECT_EQ(manager->insertData(&record), kInvalidRecord) << type;
  }
  for (const DataType type : {kCoefData, kScreenInfoData, kCoefDataResult}) {
    DataBase record(type);
    EXPECT_EQ(manager->updateData(&record), kInvalidRecord) << type;
  }
}

TEST_F(ManagerTest, WhatIsRoutedNowhereNeedsNoConnection) {
  DBInfo record;
  for (const int type : kUnknownTypes) {
    record.type = type;
    EXPECT_EQ(manager->queryData(&record), kOk) << type;
    EXPECT_EQ(manager->insertData(&record), kOk) << type;
    EXPECT_EQ(manager->updateData(&record), kOk) << type;
    EXPECT_EQ(manager->deleteData(&record), kNoOperator) << type;
  }
  record.type = kConfigData;
  EXPECT_EQ(manager->updateData(&record), kOk);
  EXPECT_EQ(manager->deleteData(&record), kOk);
  EXPECT_EQ(host.points.passed, 0) << "calls of the services";
}

TEST_F(ManagerTest, OpenSetsTwoPragmasAndTellsWhyAFileCannotBeOpened) {
  ASSERT_EQ(manager->openDB(path("a.db"), kRawKey), kOk);
  EXPECT_EQ(host.connection.statements,
            (std::vector<std::string>{"PRAGMA foreign_keys = ON", "PRAGMA synchronous = OFF"}));
  EXPECT_EQ(manager->openDB(path("no folder/a.db"), kRawKey), SQLITE_CANTOPEN);
  EXPECT_STREQ(manager->errMsg(), "unable to open database file");
}

// The engine takes no empty key; the file stays open and is not encrypted.
TEST_F(ManagerTest, OpenDB_EmptyKey) {
  EXPECT_EQ(manager->openDB(path("plain.db"), ""), SQLITE_ERROR);
  EXPECT_EQ(manager->createTables(), kOk);
  const Bytes file = contentOf(path("plain.db"));
  ASSERT_GE(file.size(), 15U);
  EXPECT_EQ(std::string(file.begin(), file.begin() + 15), "SQLite format 3");
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

using WrongKeyTest = DatabaseTest;

// The first read is that of the second pragma, which wants the schema. The file stays as it was.
TEST_F(WrongKeyTest, FailsAtTheFirstReadAndFromThereOn) {
  createFile(kByRectangle);
  ASSERT_EQ(manager->closeDB(), kOk);
  const Bytes before = contentOf(path("file.db"));
  std::string wrongKey = kRawKey;
  wrongKey[3] = 'F';
  EXPECT_EQ(manager->openDB(path("file.db"), wrongKey), SQLITE_NOTADB);
  EXPECT_EQ(lastStatement(), "PRAGMA synchronous = OFF");
  EXPECT_EQ(manager->getDBType(), kUnknownDatabaseType);
  DBInfo record;
  EXPECT_EQ(manager->queryData(&record), SQLITE_NOTADB);
  EXPECT_EQ(manager->createTables(), SQLITE_NOTADB);
  EXPECT_EQ(manager->closeDB(), kOk);
  EXPECT_EQ(contentOf(path("file.db")), before);
}

TEST_F(ManagerTest, ClosingTwiceAndClosingWhatCouldNotBeOpenedSucceeds) {
  ASSERT_EQ(manager->openDB(path("a.db"), kRawKey), kOk);
  EXPECT_EQ(manager->closeDB(), kOk);
  EXPECT_EQ(manager->closeDB(), kOk);
  EXPECT_EQ(manager->openDB(path("no folder/a.db"), kRawKey), SQLITE_CANTOPEN);
  EXPECT_EQ(manager->closeDB(), kOk);
}

}  // namespace tovrtest
