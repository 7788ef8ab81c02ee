// The row that describes the file, and the parents of the screens.
#include "tests/support/Fixture.h"

namespace tovrtest {

class DatabaseInfoTest : public DatabaseTest {
 protected:
  int insert(const std::string& name, int type) {
    DBInfo row;
    row.dbname = name;
    row.dbtype = type;
    row.datastructversion = "struct";
    row.softwareversion = "software";
    row.softwaretype = "kind";
    row.dbversion = "layout";
    return manager->insertData(&row);
  }
  DBInfo info;
};

TEST_F(DatabaseInfoTest, EveryFieldHasItsColumnAndTheFirstRowIsRead) {
  createFileWithoutType();
  info.dbname = "untouched";
  EXPECT_EQ(manager->queryData(&info), kOk);
  EXPECT_EQ(info.dbname, "untouched") << "there is no row";
  EXPECT_EQ(insert("first", 1), kOk);
  EXPECT_EQ(insert("second's", 0), kOk);
  EXPECT_EQ(rows("select id, dbname, dbtype, datastructversion, softwareversion, softwaretype, dbversion from DB_Info"),
            (Rows{{"1", "first", "1", "struct", "software", "kind", "layout"},
                  {"2", "second's", "0", "struct", "software", "kind", "layout"}}));
  EXPECT_EQ(rows("select id, dbname from Attach_DB_List"), (Rows{{"1", "first"}, {"2", "second's"}}));
  EXPECT_EQ(manager->queryData(&info), kOk);
  EXPECT_EQ(info.id, 1);
  EXPECT_EQ(info.dbname, "first");
  EXPECT_EQ(info.dbtype, 1);
  EXPECT_EQ(info.datastructversion, "struct");
  EXPECT_EQ(info.softwareversion, "software");
  EXPECT_EQ(info.softwaretype, "kind");
  EXPECT_EQ(info.dbversion, "layout");
  EXPECT_EQ(manager->getDBType(), 1);
}

TEST_F(DatabaseInfoTest, ClearingStopsWhereScreensRefer) {
  createFile(kByRectangle);
  ASSERT_EQ(addScreen("screen", {0, 0, 1, 1}), kOk);
  EXPECT_EQ(
      printedBy([&] { EXPECT_EQ(manager->deleteData(&info), SQLITE_CONSTRAINT); }),
      "DataTableOperateBase::exec sql :delete from DB_Info;  UPDATE sqlite_sequence SET seq = 0 WHERE name = "
      "'DB_Info'; \nDataTableOperateBase::exec sql :delete from Attach_DB_List;  UPDATE sqlite_sequence SET seq = "
      "0 WHERE name = 'Attach_DB_List'; \n");
  EXPECT_EQ(countOf("DB_Info"), 0) << "nothing is rolled back";
  EXPECT_EQ(countOf("Attach_DB_List"), 1);
}

TEST_F(DatabaseInfoTest, NullCellsOfOtherProgramsReadAsEmpty) {
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
  run("create table DB_Info(id, dbname, dbtype, a, b, c, d, ctime, mtime); insert into DB_Info(id) values(null)");
  info.dbname = info.dbversion = "old";
  info.dbtype = 1;
  EXPECT_EQ(manager->queryData(&info), kOk);
  EXPECT_EQ(info.dbname, "");
  EXPECT_EQ(info.dbversion, "");
  EXPECT_EQ(info.dbtype, 0);
}

TEST_F(DatabaseInfoTest, InFilesOfAnUnheardOfTypeBlocksSucceedSilently) {
  createFile(3);
  Bytes cells(4);
  CoefData record = coef({0, 0, 1, 1}, cells, 1, "x");
  EXPECT_EQ(manager->queryData(&record), kOk);
  EXPECT_EQ(manager->insertData(&record), kOk);
  EXPECT_EQ(manager->updateData(&record), kOk);
  EXPECT_EQ(countOf("Coef"), 0);
}

}  // namespace tovrtest
