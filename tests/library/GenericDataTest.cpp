// Generic blobs: one per data type.
#include "tests/support/Fixture.h"

namespace tovrtest {

class GenericDataTest : public ScreenFileTest {
 protected:
  Rows placements() { return rows("select screenid, dataid, datatype from DataInfo order by id"); }
};

TEST_F(DatabaseTest, GenericDataWithoutAScreenIsStoredButItsPlacementRefused) {
  createFile(kByRectangle);
  EXPECT_EQ(insertData(5, {1}), SQLITE_CONSTRAINT);  // on screen "0", as no key was issued
  EXPECT_EQ(countOf("Data"), 1);
  EXPECT_EQ(countOf("DataInfo"), 0);
}

TEST_F(GenericDataTest, StoringReplacesTheBlobOfItsTypeUnderANewKey) {
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), kOk);
  EXPECT_EQ(insertData(5, pattern(11, 1)), kOk);
  EXPECT_EQ(insertData(-6, {}), kOk);
  EXPECT_EQ(insertData(5, pattern(20, 2)), kOk);
  EXPECT_EQ(placements(), (Rows{{"2", "2", "-6"}, {"2", "3", "5"}})) << "on the screen that was issued last";
  EXPECT_EQ(rows("select id, length(data), version from Data"), (Rows{{"2", "8", "v"}, {"3", "24", "v"}}));
  EXPECT_EQ(readData(5).bytes, pattern(20, 2));
  EXPECT_EQ(readData(-6).code, kOk);
  EXPECT_EQ(readData(-6).bytes, Bytes{});
}

TEST_F(GenericDataTest, NothingIsClearedAndNothingUpdated) {
  ASSERT_EQ(insertData(5, {1}), kOk);
  ConfigData record;
  record.datatype = 5;
  EXPECT_EQ(manager->deleteData(&record), kOk);
  EXPECT_EQ(manager->updateData(&record), kOk);
  EXPECT_EQ(readData(5).bytes, Bytes{1});
}

TEST_F(GenericDataTest, OfSeveralBlobsTheFirstListedIsReadAndAllAreReplaced) {
  ASSERT_EQ(insertData(1, {1}), kOk);
  ASSERT_EQ(insertData(2, {2}), kOk);
  run("update DataInfo set datatype = 5");
  EXPECT_EQ(readData(5).bytes, Bytes{1});
  EXPECT_EQ(insertData(5, {3}), kOk);
  EXPECT_EQ(placements(), (Rows{{"1", "3", "5"}}));
  EXPECT_EQ(rows("select id from Data"), (Rows{{"3"}}));
}

// Queries a record that holds a byte of the test's own.
class DataQueryTest : public GenericDataTest {
 protected:
  void SetUp() override {
    ScreenFileTest::SetUp();
    ASSERT_EQ(insertData(5, pattern(9, 1)), kOk);
    record.reserved2 = 8;
    record.data = &mine;
    record.dataSize = 1;
  }
  int queryUnchanged(int datatype) {
    record.datatype = datatype;
    const int code = manager->queryData(&record);
    EXPECT_EQ(record.data, &mine);
    EXPECT_EQ(record.dataSize, 1U);
    EXPECT_EQ(record.reserved2, 8U);
    return code;
  }

  ConfigData record;
  unsigned char mine = 7;
};

TEST_F(DataQueryTest, WhatCannotBeReadLeavesTheRecordAlone) {
  EXPECT_EQ(queryUnchanged(6), kNoData);
  for (const char* blob : {"x'00'", "x''", "zeroblob(16)", "'text'"}) {
    run("update Data set data = " + std::string(blob));
    EXPECT_EQ(queryUnchanged(5), kCipherFailed) << blob;
  }
  run("PRAGMA foreign_keys = OFF; delete from Data");
  EXPECT_EQ(queryUnchanged(5), kOk) << "a placement without its blob";
}

TEST_F(DataQueryTest, WhatIsReadIsANewArrayOfTheCallers) {
  record.datatype = 5;
  ASSERT_EQ(manager->queryData(&record), kOk);
  const std::unique_ptr<unsigned char[]> owner(record.data);
  EXPECT_NE(record.data, &mine);
  EXPECT_EQ(Bytes(record.data, record.data + record.dataSize), pattern(9, 1));
  EXPECT_EQ(record.reserved2, 0U);
  EXPECT_EQ(record.dataSizeUpper, 0U);
}

TEST_F(DataQueryTest, ABlobThatDoesNotDecipherLeavesTheFileToOtherPrograms) {
  run("update Data set data = x'00'");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(readData(5).code, kCipherFailed); }), "");
  Sqlite3DB other;
  ASSERT_EQ(other.open(path("file.db").c_str()), 0);
  ASSERT_EQ(other.setKey(kRawKey, sizeof kRawKey - 1), 0);
  EXPECT_EQ(other.exec("insert into Data(data, version) values(x'01', '')"), 0);
}

}  // namespace tovrtest
