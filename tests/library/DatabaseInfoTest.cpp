// The row that describes the file, and the parents of the screens.
#include "tests/support/Fixture.h"

namespace tovrtest {

class DatabaseInfoTest : public DatabaseTest {
 protected:
  int insert(const std::string& name, int type) {
    DBInfo row;
    row.dbtype = type;
    const char* const texts[] = {"struct", "software", "kind", "layout"};
    std::string* const fields[] = {&row.datastructversion, &row.softwareversion, &row.softwaretype, &row.dbversion};
    for (int i = 0; i < 4; ++i) *fields[i] = texts[i];
    row.dbname = name;
    return manager->insertData(&row);
  }
  std::string bothTables() {
    return rows("select id, dbname, dbtype, datastructversion, softwareversion, softwaretype, dbversion from DB_Info") +
           rows("select id, dbname from Attach_DB_List");
  }
  DBInfo info;
};

TEST_F(DatabaseInfoTest, EveryTextHasItsColumnAndTheFirstRowIsRead) {
  createFile(2);
  info.dbname = "untouched";
  EXPECT_EQ(manager->queryData(&info), 0);
  EXPECT_EQ(info.dbname, "untouched");
  EXPECT_EQ(insert("first", 1) + insert("second's", 0), 0);
  EXPECT_EQ(bothTables(),
            "1|first|1|struct|software|kind|layout\n2|second's|0|struct|software|kind|layout\n1|first\n2|second's\n");
  EXPECT_EQ(manager->queryData(&info), 0);
  EXPECT_EQ(info.dbname + info.datastructversion + info.softwareversion + info.softwaretype + info.dbversion,
            "firststructsoftwarekindlayout");
  EXPECT_EQ(info.id * 10 + info.dbtype, 11);
  EXPECT_EQ(manager->getDBType(), 1);
}

TEST_F(DatabaseInfoTest, ClearingRestartsTheKeysAndStopsWhereScreensRefer) {
  createFile(0);
  ASSERT_EQ(addScreen("screen", {0, 0, 1, 1}), 0);
  EXPECT_EQ(
      printedBy([&] { EXPECT_EQ(manager->deleteData(&info), 19); }),
      "DataTableOperateBase::exec sql :delete from DB_Info;  UPDATE sqlite_sequence SET seq = 0 WHERE name = "
      "'DB_Info'; \nDataTableOperateBase::exec sql :delete from Attach_DB_List;  UPDATE sqlite_sequence SET seq = "
      "0 WHERE name = 'Attach_DB_List'; \n");
  EXPECT_EQ(bothTables(), "1|\n");
  run("delete from Screen_Info");
  EXPECT_EQ(manager->deleteData(&info), 0);
  EXPECT_EQ(insert("again", 0), 0);
  EXPECT_EQ(bothTables(), "1|again|0|struct|software|kind|layout\n1|again\n");
}

TEST_F(DatabaseInfoTest, NullCellsAndUnheardOfTypesOfOtherProgramsDoNoHarm) {
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
  run("create table DB_Info(id, dbname, dbtype, a, b, c, d, ctime, mtime); insert into DB_Info(id) values(null)");
  info.dbname = info.dbversion = "old";
  EXPECT_EQ(manager->queryData(&info), 0);
  EXPECT_EQ(info.dbname + info.dbversion + std::to_string(info.dbtype), "0");
  run("update DB_Info set dbtype = 3");
  Bytes cells(4);
  CoefData record = coef({0, 0, 1, 1}, cells, 1, "x");
  EXPECT_EQ(manager->queryData(&record) + manager->insertData(&record) + manager->updateData(&record), 0);
}

}  // namespace tovrtest
