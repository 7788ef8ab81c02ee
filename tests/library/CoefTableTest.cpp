// The operator of coefficient blocks and their placement.
#include "crypto/DES.h"
#include "tables/CoefDataTableOperate.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

class CoefTableTest : public DatabaseTest {
 protected:
  void SetUp() override {
    createFile(0);
    ASSERT_EQ(addScreen("screen", {0, 0, 99, 99}), 0);
    table = std::make_unique<CoefDataTableOperate>();
  }
  CoefData first() {
    CoefDataResult result;
    result.coefs.resize(3);
    EXPECT_EQ(manager->queryData(&result), 0);
    return result.coefs.at(0);
  }
  std::unique_ptr<CoefDataTableOperate> table;
};

TEST_F(CoefTableTest, PlacementComesBackButForItsAreaNumberWhichGoesToTheIndex) {
  const std::string stored =
      "select id, screenid, coefid, coeftablename, coeftype, areaid, left, top, right, bottom, multilayersize, "
      "hex(multilayerlist), ctime = 'old', mtime = 'old' from Coef_Info";
  Bytes cells = {1, 2, 3};
  CoefData record = coef({11, 12, 13, 14}, cells, 3);
  ASSERT_EQ(table->insertCoef(&record), 0);
  record.screenid = record.coefid = 1;
  record.coeftablename = "X";
  record.areaIndex = 70;
  record.areaid = 80;
  record.multilayersize = 5;
  record.multilayerlist = {1, -2, 0x01020304};
  ASSERT_EQ(table->insert(&record), 0);
  EXPECT_EQ(host.connection.statements.back(),
            "insert into Coef_Info(screenid, coefid, coeftablename, coeftype, areaid, top, left, bottom,              "
            "right, multilayersize, multilayerlist, ctime, mtime) values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
            "datetime('now','localtime'), datetime('now','localtime'))");
  EXPECT_EQ(rows(stored), "1|1|1|Coef|1|80|11|12|13|14|5|01000000FEFFFFFF04030201|0|0\n");
  CoefData read = first();
  EXPECT_EQ(fieldsOf(read), "1 1 1 1 80 -1 11 12 13 14 5 Coef");
  EXPECT_EQ(read.multilayerlist, record.multilayerlist);

  read.multilayersize = 0;
  run("update Coef_Info set mtime = 'old', ctime = 'old'");
  EXPECT_EQ(table->update(&read), 0);  // written back as it was read, it loses its area number
  EXPECT_EQ(host.connection.statements.back(),
            "update Coef_Info set screenid=?,coefid=?,coeftablename=?,coeftype=?,areaid=?,top=?,left=?,bottom=?,right=?"
            ",multilayersize=?,multilayerlist=?,mtime=datetime('now','localtime') where id=1");
  EXPECT_EQ(rows(stored), "1|1|1|Coef|1|-1|11|12|13|14|0|01000000FEFFFFFF04030201|1|0\n");
  read.id = 2;
  EXPECT_EQ(table->update(&read), 0);  // no such row
  read.multilayerlist.clear();
  EXPECT_EQ(table->insert(&read), 0);
  EXPECT_EQ(rows("select count(*) from Coef_Info where multilayerlist is null"), "1\n");
  read.screenid = 9;
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(table->insert(&read), 19); }), "FOREIGN KEY constraint failed");
  CoefDataResult list;
  for (const int code : {table->update(&list), table->insert(&list), table->query(&read)}) EXPECT_EQ(code, 4096);
}

TEST_F(CoefTableTest, LayerListsOfOtherProgramsAreTakenInWholeElements) {
  run("insert into Coef(data, databitwidth, version) values(x'00', 1, '')");
  const std::pair<const char*, std::size_t> cases[] = {
      {"0, zeroblob(12)", 0}, {"3, zeroblob(12)", 3}, {"5, zeroblob(12)", 3}, {"2, x''", 0},
      {"2, zeroblob(7)", 1},  {"1, zeroblob(3)", 0},  {"2, null", 0},         {"null, x'01020304'", 0}};
  for (const auto& [stored, elements] : cases) {
    run("delete from Coef_Info; insert into Coef_Info(screenid, coefid, coeftablename, coeftype, areaid, top, left, "
        "bottom, right, multilayersize, multilayerlist) values(1, 1, '', 1, 1, 0, 0, 0, 0, " +
        std::string(stored) + ")");
    EXPECT_EQ(first().multilayerlist.size(), elements) << stored;
  }
}

TEST_F(CoefTableTest, BlocksAreStoredReadBackRefusedAndCleared) {
  Bytes cells = pattern(21, 1);
  CoefData record = coef({0, 0, 1, 1}, cells, 7);
  record.version = "v1";
  ASSERT_EQ(table->insertCoef(&record), 0);
  EXPECT_EQ(rows("select id, length(data), databitwidth, version from Coef"), "1|32|7|v1\n");
  Bytes others = pattern(5, 2);
  record.coefBuffer = {2, others.data(), 5};
  record.version = "not stored";
  EXPECT_EQ(table->updateCoef(1, &record), 0);
  EXPECT_EQ(rows("select databitwidth, version from Coef"), "2|v1\n");
  CoefBuffer read;
  ASSERT_EQ(table->selectCoef(1, &read), 0);
  const std::unique_ptr<unsigned char[]> owner(read.data);
  EXPECT_EQ(Bytes(read.data, read.data + read.datasize), others);
  EXPECT_EQ(read.databitwidth, 2);
  CoefBuffer missing{77, nullptr, 66};
  EXPECT_EQ(table->selectCoef(-4, &missing), 0);
  EXPECT_EQ(missing.databitwidth * 100 + missing.datasize, 7766);

  EXPECT_EQ(table->insertCoef(nullptr), 4096);
  EXPECT_EQ(table->updateCoef(1, nullptr), 4096);
  for (const auto& broken : {CoefBuffer{1, nullptr, 4}, CoefBuffer{1, others.data(), -1}}) {
    record.coefBuffer = broken;
    EXPECT_EQ(table->insertCoef(&record), 4106);
    EXPECT_EQ(table->updateCoef(1, &record), 4106);
  }
  EXPECT_EQ(rows("select count(*), databitwidth from Coef"), "1|2\n");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->deleteData(&record), 0); }),
            "DataTableOperateBase::exec sql :delete from Coef_Info;  UPDATE sqlite_sequence SET seq = 0 WHERE "
            "name='Coef_Info';\nDataTableOperateBase::exec sql :delete from Coef;  UPDATE sqlite_sequence SET seq = 0 "
            "WHERE name='Coef';\n");
  record.coefBuffer = {};
  EXPECT_EQ(manager->insertData(&record), 0);
  EXPECT_EQ(rows("select id, coefid from Coef_Info"), "1|1\n");
}

TEST_F(CoefTableTest, ABlockThatDoesNotDecipherLeavesTheBufferButForTheCellWidth) {
  Bytes cells = pattern(21, 1);
  const CoefData record = coef({0, 0, 1, 1}, cells, 7);
  ASSERT_EQ(table->insertCoef(&record), 0);
  run("update Coef set data = x'0102030405060708'");
  CoefBuffer read{77, cells.data(), 66};
  EXPECT_EQ(table->selectCoef(1, &read), kCipherFailed);
  EXPECT_EQ(read.databitwidth, 7);
  EXPECT_EQ(read.data, cells.data());
  EXPECT_EQ(read.datasize, 66);
}

}  // namespace tovrtest
