// Measurements: the blob that is kept, the placement that is rejected, and the dump.
#include "tables/LumChromaDataTableOperate.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

class LumChromaTest : public DatabaseTest {
 protected:
  void SetUp() override {
    createFile(0);
    ASSERT_EQ(addScreen("", {0, 0, 9, 9}), 0);
    table = std::make_unique<LumChromaDataTableOperate>();
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
  std::string queried() {
    return printedBy([&] { EXPECT_EQ(table->query(&record), 0); });
  }
  void place(const std::string& datatype) {
    run("insert into LumChromDataInfo(screenid, dataid, datatablename, datatype, top, left, bottom, right, ctime, "
        "mtime) values('1', 1, 'LumChromData', " +
        datatype + ", 2, 1, 4, 3, 'c', 'm')");
  }

  std::unique_ptr<LumChromaDataTableOperate> table;
  LumChromaData record;
};

TEST_F(LumChromaTest, TheBlobIsKeptAndThePlacementRejected) {
  std::string printed = printedBy([&] { EXPECT_EQ(insert({1, 2, 3}), 19); });
  EXPECT_EQ(printed, "NOT NULL constraint failed: LumChromDataInfo.datatype");
  EXPECT_EQ(host.connection.statements.back(),
            "insert into LumChromDataInfo(screenid, dataid, datatablename, datatype, top, left, bottom,              "
            "right, ctime, mtime) values (?, ?, ?, ?, ?, ?, ?, ?, datetime('now','localtime'), "
            "datetime('now','localtime'))");
  EXPECT_EQ(rows("select id, length(data), version from LumChromData"), "1|8|v\n");
  EXPECT_EQ(rows("select count(*) from LumChromDataInfo"), "0\n");
  EXPECT_EQ(insert({}), 19);
  EXPECT_EQ(rows("select max(id) from LumChromData"), "2\n");
  record.dataSize = 5;  // and no data
  EXPECT_EQ(manager->insertData(&record), 4106);
  for (const auto operation :
       {&DataTableOperateBase::insert, &DataTableOperateBase::query, &DataTableOperateBase::update}) {
    EXPECT_EQ((table.get()->*operation)(nullptr), 4097);
  }
}

// A table without the constraint shows what the rejected row holds.
TEST_F(LumChromaTest, ThePlacementNamesTheFirstScreenAndTheBlobsKey) {
  run("drop table LumChromDataInfo; create table LumChromDataInfo(id integer primary key, screenid, dataid, "
      "datatablename, datatype, top, left, bottom, right, ctime, mtime)");
  ASSERT_EQ(addScreen("", {0, 0, 9, 9}), 0);
  EXPECT_EQ(insert({1}), 0);
  EXPECT_EQ(insert({2}), 0);
  EXPECT_EQ(rows("select screenid, dataid, datatablename, datatype, top, left, bottom, right from LumChromDataInfo"),
            "1|1|LumChromData|null|2|1|4|3\n1|2|LumChromData|null|2|1|4|3\n");
}

TEST_F(LumChromaTest, TheDumpSkipsEverySixteenthByteAndEndsAfter256) {
  EXPECT_EQ(queried(), "");  // no blob with key 1
  Bytes forty;
  for (int i = 1; i <= 40; ++i) forty.push_back(static_cast<unsigned char>(i));
  insert(forty);
  const std::string dumped = "123456789ABCDEF\n1112131415161718191A1B1C1D1E1F\n2122232425262728";
  EXPECT_EQ(queried(), dumped);
  insert(Bytes(300, 0xB));  // key 2: not dumped
  place("6");
  place("7");  // another type: not printed
  EXPECT_EQ(queried(), "1|1|1|LumChromData|6|2|1|4|3|c|m \n" + dumped);
  EXPECT_EQ(host.connection.statements[host.connection.statements.size() - 2],
            "select * from LumChromDataInfo where top = 2 and left = 1 and bottom = 4 and right = 3 and datatype = 6");
  run("delete from LumChromDataInfo; delete from LumChromData where id = 1; update LumChromData set id = 1");
  std::string lines;
  for (int line = 0; line < 16; ++line) lines += std::string(15, 'B') + "\n";
  EXPECT_EQ(queried(), lines);
  run("update LumChromData set data = x'00'");
  EXPECT_EQ(queried(), "");  // the blob does not decipher
  run("drop table LumChromDataInfo");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(table->query(&record), 1); }), "no such table: LumChromDataInfo");
}

TEST_F(LumChromaTest, UpdatesChangeNothingAndClearingSpellsItsStatementsDifferently) {
  insert({1});
  place("6");
  EXPECT_EQ(table->update(&record), 0);
  EXPECT_EQ(host.connection.statements.back(),
            "update LumChromDataInfo set datatablename=? where top = ?            and left = ? and bottom = ? and "
            "right = ? and datatype = ?");
  EXPECT_EQ(rows("select datatablename from LumChromDataInfo"), "LumChromData\n");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->deleteData(&record), 0); }),
            "DataTableOperateBase::exec sql :delete from LumChromDataInfo;  UPDATE sqlite_sequence SET seq = 0 WHERE "
            "name = 'LumChromDataInfo'; \nDataTableOperateBase::exec sql :delete from LumChromData;  UPDATE "
            "sqlite_sequence SET seq = 0 WHERE name='LumChromData';\n");
  insert({2});
  EXPECT_EQ(rows("select (select group_concat(id) from LumChromData), (select count(*) from LumChromDataInfo)"),
            "1|0\n");
}

TEST_F(LumChromaTest, TheRowsAreFreedBeforeTheDumpAndBeforeTheErrorText) {
  using Calls = std::vector<std::string>;
  host.connection.tableCalls.clear();
  EXPECT_EQ(table->query(&record), 0);
  EXPECT_EQ(host.connection.tableCalls, (Calls{"get_table", "free_table", "prepare_v2"}));
  run("drop table LumChromDataInfo");
  host.connection.tableCalls.clear();
  EXPECT_EQ(table->query(&record), 1);
  EXPECT_EQ(host.connection.tableCalls, (Calls{"get_table", "free_table", "errMsg"}));
}

}  // namespace tovrtest
