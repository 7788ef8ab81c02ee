// The file format: the nine tables' texts, their order, and what the engine makes of them.
#include <fstream>

#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr const char* kProgress[] = {"start create DB Table\n", "start create Screen_Info Table\n",
                                     "start create Coef_Info Table\n", "start create LumChromDataInfo Table\n",
                                     "start create DataInfo Table\n"};
constexpr std::size_t kGroupOf[] = {0, 0, 1, 2, 2, 3, 3, 4, 4};  // by table

class SchemaTest : public DatabaseTest {
 protected:
  void SetUp() override { ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk); }

  std::string createTables(int expected) {
    return printedBy([&] { EXPECT_EQ(manager->createTables(), expected); });
  }
};

// The nine tables with their columns, to the blank.
std::vector<std::string> expectedTables() {
  std::ifstream file(TOVR_TEST_DATA "/schema.txt");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  EXPECT_EQ(lines.size(), 9U);
  return lines;
}

TEST_F(SchemaTest, AFileHoldsExactlyTheNineTablesInOrder) {
  createTables(kOk);
  createTables(kOk);  // a second time changes nothing
  const Rows created =
      rows("select sql from sqlite_master where type = 'table' and name not like 'sqlite_%' order by rowid");
  const std::vector<std::string> expected = expectedTables();
  ASSERT_EQ(created.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(created[i][0], "CREATE TABLE " + expected[i]);
}

TEST_F(SchemaTest, EveryGroupIsAnnouncedAndEveryStatementLogged) {
  std::string logged;
  const std::vector<std::string> expected = expectedTables();
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (i == 0 || kGroupOf[i] != kGroupOf[i - 1]) logged += kProgress[kGroupOf[i]];
    logged += "DataTableOperateBase::exec sql :create table if not exists " + expected[i] + "\n";
  }
  EXPECT_EQ(createTables(kOk), logged);
  EXPECT_EQ(createTables(kOk), logged);
}

TEST_F(SchemaTest, CreationStopsAtTheFirstFailure) {
  for (int statement = 1; statement <= 9; ++statement) {
    SCOPED_TRACE(statement);
    host.points.arm(statement);
    const std::string printed = createTables(FaultyConnection::kFault);
    EXPECT_EQ(host.points.passed, statement);
    const std::size_t lastGroup = kGroupOf[statement - 1];
    EXPECT_NE(printed.find(kProgress[lastGroup]), std::string::npos);
    if (lastGroup < 4) {
      EXPECT_EQ(printed.find(kProgress[lastGroup + 1]), std::string::npos);
    }
  }
}

TEST_F(SchemaTest, ForeignKeysAreEnforced) {
  createFile(kByRectangle);
  ScreenInfoData orphan;
  orphan.dbid = 99;
  EXPECT_EQ(manager->insertData(&orphan), SQLITE_CONSTRAINT);
  EXPECT_STREQ(manager->errMsg(), "FOREIGN KEY constraint failed");
  EXPECT_EQ(addScreen("screen", {0, 0, 1, 1}), kOk);
  for (const char* insert :
       {"insert into Coef_Info(screenid, coefid, coeftablename, coeftype, areaid, top, left, bottom, right) "
        "values(1, 5, '', 1, 1, 0, 0, 0, 0)",
        "insert into LumChromDataInfo(screenid, dataid, datatablename, datatype, top, left, bottom, right) "
        "values('1', 5, '', 1, 0, 0, 0, 0)",
        "insert into DataInfo(screenid, dataid, datatype) values('1', 5, 1)"}) {
    EXPECT_EQ(host.engine.exec(insert), SQLITE_CONSTRAINT) << insert;
  }
}

TEST_F(SchemaTest, TimesFillThemselves) {
  createFile(kByRectangle);
  run("insert into Attach_DB_List(dbname) values('by default')");
  EXPECT_EQ(number("select count(*) from Attach_DB_List where ctime like '____-__-__ __:__:__' and mtime = ctime"), 2);
}

}  // namespace tovrtest
