// Generic blobs: one per data type.
#include "tests/support/Fixture.h"

namespace tovrtest {

class GenericDataTest : public DatabaseTest {
 protected:
  void SetUp() override { createFile(0); }
  std::string placements() { return rows("select screenid, dataid, datatype from DataInfo order by id"); }
};

TEST_F(GenericDataTest, StoringReplacesTheBlobOfItsTypeUnderANewKey) {
  EXPECT_EQ(insertData(5, {1}), 19);  // on screen "0", as none was issued: the placement is refused, the blob stays
  EXPECT_EQ(rows("select (select count(*) from Data), (select count(*) from DataInfo)"), "1|0\n");
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), 0);
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), 0);
  EXPECT_EQ(readData(5).first, 4097);
  EXPECT_EQ(insertData(5, pattern(11, 1)), 0);
  EXPECT_EQ(insertData(-6, {}), 0);
  EXPECT_EQ(insertData(5, pattern(20, 2)), 0);
  EXPECT_EQ(placements(), "2|3|-6\n2|4|5\n");  // the screen that was issued last
  EXPECT_EQ(rows("select id, length(data), version from Data"), "1|8|v\n3|8|v\n4|24|v\n");
  EXPECT_EQ(readData(5), (Read{0, pattern(20, 2)}));
  EXPECT_EQ(readData(-6), (Read{0, {}}));
  ConfigData untouched;
  EXPECT_EQ(manager->deleteData(&untouched) + manager->updateData(&untouched), 0);
  EXPECT_EQ(placements(), "2|3|-6\n2|4|5\n");
}

TEST_F(GenericDataTest, OfSeveralBlobsTheFirstListedIsReadAndAllAreReplaced) {
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), 0);
  ASSERT_EQ(insertData(1, {1}), 0);
  ASSERT_EQ(insertData(2, {2}), 0);
  run("update DataInfo set datatype = 5");
  EXPECT_EQ(readData(5), (Read{0, {1}}));
  EXPECT_EQ(insertData(5, {3}), 0);
  EXPECT_EQ(placements(), "1|3|5\n");
  EXPECT_EQ(rows("select id from Data"), "3\n");
}

TEST_F(GenericDataTest, WhatCannotBeReadLeavesTheRecordAlone) {
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), 0);
  ASSERT_EQ(insertData(5, pattern(9, 1)), 0);
  ConfigData record;
  unsigned char mine = 7;
  record.reserved2 = 8;
  record.data = &mine;
  record.dataSize = 1;
  const auto query = [&](int datatype) {
    record.datatype = datatype;
    const int code = manager->queryData(&record);
    EXPECT_TRUE(record.data == &mine && record.dataSize == 1 && record.reserved2 == 8);
    return code;
  };
  EXPECT_EQ(query(6), 4097);
  for (const char* blob : {"x'00'", "x''", "zeroblob(16)", "'text'"}) {
    run("update Data set data = " + std::string(blob));
    EXPECT_EQ(query(5), 4106) << blob;
  }
  run("PRAGMA foreign_keys = OFF; delete from Data");
  EXPECT_EQ(query(5), 0);
  ConfigData broken;
  broken.datatype = 5;
  broken.dataSize = 4;  // and no data
  EXPECT_EQ(manager->insertData(&broken), 4106);
  ASSERT_EQ(insertData(5, {4}), 0);
  record.datatype = 5;
  ASSERT_EQ(manager->queryData(&record), 0);
  const std::unique_ptr<unsigned char[]> owner(record.data);
  EXPECT_EQ(record.reserved2, 0U);
  EXPECT_EQ(record.dataSize * 100 + record.data[0], 104U);
}

TEST_F(GenericDataTest, ABlobThatDoesNotDecipherLeavesTheFileToOtherPrograms) {
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), 0);
  ASSERT_EQ(insertData(5, pattern(9, 1)), 0);
  run("update Data set data = x'00'");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(readData(5).first, kCipherFailed); }), "");
  Sqlite3DB other;
  ASSERT_EQ(other.open(path("file.db").c_str()), 0);
  ASSERT_EQ(other.setKey(kRawKey, sizeof kRawKey - 1), 0);
  EXPECT_EQ(other.exec("insert into Data(data, version) values(x'01', '')"), 0);
}

}  // namespace tovrtest
