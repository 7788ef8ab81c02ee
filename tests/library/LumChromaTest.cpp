// Measurements: the blob that is kept, the placement that is rejected, and the dump.
#include "tables/LumChromaDataTableOperate.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

class LumChromaTest : public ScreenFileTest {
 protected:
  void SetUp() override {
    ScreenFileTest::SetUp();
    setRect(record, {1, 2, 3, 4});
    record.datatype = 6;
    record.version = "v";
  }
  int insert(Bytes bytes) {
    record.data = bytes.data();
    record.dataSize = static_cast<std::uint32_t>(bytes.size());
    const int code = manager->insertData(&record);
    record.data = nullptr;
    return code;
  }
  // What a query of the record prints.
  std::string queried() {
    return printedBy([&] { EXPECT_EQ(table.query(&record), kOk); });
  }
  // Places the blob 1 as the library never does: with a data type.
  void place(int datatype) {
    run("insert into LumChromDataInfo(screenid, dataid, datatablename, datatype, top, left, bottom, right, ctime, "
        "mtime) values('1', 1, 'LumChromData', " +
        std::to_string(datatype) + ", 2, 1, 4, 3, 'c', 'm')");
  }

  LumChromaDataTableOperate table;
  LumChromaData record;
};

TEST_F(LumChromaTest, TheBlobIsKeptAndThePlacementRejected) {
  const std::string printed = printedBy([&] { EXPECT_EQ(insert({1, 2, 3}), SQLITE_CONSTRAINT); });
  EXPECT_EQ(printed, "NOT NULL constraint failed: LumChromDataInfo.datatype");
  EXPECT_EQ(lastStatement(),
            "insert into LumChromDataInfo(screenid, dataid, datatablename, datatype, top, left, bottom,              "
            "right, ctime, mtime) values (?, ?, ?, ?, ?, ?, ?, ?, datetime('now','localtime'), "
            "datetime('now','localtime'))");
  EXPECT_EQ(rows("select id, length(data), version from LumChromData"), (Rows{{"1", "8", "v"}}));
  EXPECT_EQ(countOf("LumChromDataInfo"), 0);
  EXPECT_EQ(insert({}), SQLITE_CONSTRAINT);
  EXPECT_EQ(countOf("LumChromData"), 2);
}

TEST_F(LumChromaTest, RecordsThatAreNoneAndSizesWithoutBytesAreRefused) {
  record.dataSize = 5;
  EXPECT_EQ(manager->insertData(&record), kCipherFailed);
  EXPECT_EQ(countOf("LumChromData"), 0);
  EXPECT_EQ(table.insert(nullptr), kNoRecord);
  EXPECT_EQ(table.query(nullptr), kNoRecord);
  EXPECT_EQ(table.update(nullptr), kNoRecord);
}

// A table without the constraint shows what the rejected row holds.
TEST_F(LumChromaTest, ThePlacementNamesTheFirstScreenAndTheBlobsKey) {
  run("drop table LumChromDataInfo; create table LumChromDataInfo(id integer primary key, screenid, dataid, "
      "datatablename, datatype, top, left, bottom, right, ctime, mtime)");
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), kOk);
  EXPECT_EQ(insert({1}), kOk);
  EXPECT_EQ(insert({2}), kOk);
  EXPECT_EQ(rows("select screenid, dataid, datatablename, datatype, top, left, bottom, right from LumChromDataInfo"),
            (Rows{{"1", "1", "LumChromData", "null", "2", "1", "4", "3"},
                  {"1", "2", "LumChromData", "null", "2", "1", "4", "3"}}));
}

TEST_F(LumChromaTest, AQueryPrintsThePlacementsOfItsTypeAndTheFirstBlobWithoutEverySixteenthByte) {
  EXPECT_EQ(queried(), "") << "there is no blob with key 1";
  Bytes forty;
  for (int i = 1; i <= 40; ++i) forty.push_back(static_cast<unsigned char>(i));
  insert(forty);
  insert(Bytes(300, 0xB));  // key 2: not printed
  const std::string dumped = "123456789ABCDEF\n1112131415161718191A1B1C1D1E1F\n2122232425262728";
  EXPECT_EQ(queried(), dumped);
  place(6);
  place(7);
  EXPECT_EQ(queried(), "1|1|1|LumChromData|6|2|1|4|3|c|m \n" + dumped);
  EXPECT_EQ(host.connection.statements[host.connection.statements.size() - 2],
            "select * from LumChromDataInfo where top = 2 and left = 1 and bottom = 4 and right = 3 and datatype = 6");
  run("delete from LumChromDataInfo; delete from LumChromData where id = 1; update LumChromData set id = 1");
  std::string lines;
  for (int line = 0; line < 16; ++line) lines += std::string(15, 'B') + "\n";
  EXPECT_EQ(queried(), lines) << "of 300 bytes, 256";
}

TEST_F(LumChromaTest, ABlobThatDoesNotDecipherIsNotPrintedAndAMissingTableIsTold) {
  insert({1});
  run("update LumChromData set data = x'00'");
  EXPECT_EQ(queried(), "");
  run("drop table LumChromDataInfo");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(table.query(&record), SQLITE_ERROR); }), "no such table: LumChromDataInfo");
}

TEST_F(LumChromaTest, AnUpdateChangesNothing) {
  insert({1});
  place(6);
  EXPECT_EQ(table.update(&record), kOk);
  EXPECT_EQ(lastStatement(),
            "update LumChromDataInfo set datatablename=? where top = ?            and left = ? and bottom = ? and "
            "right = ? and datatype = ?");
  EXPECT_EQ(rows("select datatablename from LumChromDataInfo"), (Rows{{"LumChromData"}}));
}

TEST_F(LumChromaTest, ClearingTakesPlacementsBeforeBlobsAndRestartsTheKeys) {
  insert({1});
  place(6);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->deleteData(&record), kOk); }),
            "DataTableOperateBase::exec sql :delete from LumChromDataInfo;  UPDATE sqlite_sequence SET seq = 0 WHERE "
            "name = 'LumChromDataInfo'; \nDataTableOperateBase::exec sql :delete from LumChromData;  UPDATE "
            "sqlite_sequence SET seq = 0 WHERE name='LumChromData';\n");
  EXPECT_EQ(countOf("LumChromDataInfo"), 0);
  insert({2});
  EXPECT_EQ(rows("select id from LumChromData"), (Rows{{"1"}}));
}

}  // namespace tovrtest
