// The file format: the nine tables' texts, their order, and what the engine makes of them.
#include <fstream>

#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr const char* kProgress[] = {"start create DB Table\n", "start create Screen_Info Table\n",
                                     "start create Coef_Info Table\n", "start create LumChromDataInfo Table\n",
                                     "start create DataInfo Table\n"};
constexpr int kGroupOf[] = {0, 0, 1, 2, 2, 3, 3, 4, 4};

using SchemaTest = DatabaseTest;

// The nine tables with their columns, to the blank.
std::vector<std::string> statements() {
  std::ifstream file(TOVR_TEST_DATA "/schema.txt");
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  EXPECT_EQ(lines.size(), 9U);
  return lines;
}

TEST_F(SchemaTest, TheFileHoldsExactlyTheNineTablesInOrder) {
  const std::vector<std::string> expected = statements();
  std::string logged;
  std::string held;
  int group = -1;
  for (int i = 0; i < 9; ++i) {
    if (kGroupOf[i] != group) logged += kProgress[group = kGroupOf[i]];
    const std::string text = expected.at(static_cast<std::size_t>(i));
    logged += "DataTableOperateBase::exec sql :create table if not exists " + text + "\n";
    held += "CREATE TABLE " + text + "\n";
  }
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
  for (int round = 0; round < 2; ++round) {  // a second time changes nothing
    int code = -1;
    EXPECT_EQ(printedBy([&] { code = manager->createTables(); }), logged);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(rows("select sql from sqlite_master where type = 'table' and name not like 'sqlite_%' order by rowid"),
              held);
  }
}

TEST_F(SchemaTest, CreationStopsAtTheFirstFailure) {
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
  for (int statement = 1; statement <= 9; ++statement) {
    host.points.arm(statement);
    int code = 0;
    const std::string printed = printedBy([&] { code = manager->createTables(); });
    EXPECT_EQ(code, FaultyConnection::kFault) << statement;
    EXPECT_EQ(host.points.passed, statement);
    for (int group = 0; group < 5; ++group) {
      EXPECT_EQ(printed.find(kProgress[group]) != std::string::npos, group <= kGroupOf[statement - 1]) << statement;
    }
  }
}

TEST_F(SchemaTest, ForeignKeysAreEnforcedAndTimesFillThemselves) {
  createFile(0);
  ScreenInfoData orphan;
  orphan.dbid = 99;
  EXPECT_EQ(manager->insertData(&orphan), 19);
  EXPECT_STREQ(manager->errMsg(), "FOREIGN KEY constraint failed");
  EXPECT_EQ(addScreen("screen", {0, 0, 1, 1}), 0);
  for (const char* insert :
       {"insert into Coef_Info(screenid, coefid, coeftablename, coeftype, areaid, top, left, bottom, right) "
        "values(1, 5, '', 1, 1, 0, 0, 0, 0)",
        "insert into LumChromDataInfo(screenid, dataid, datatablename, datatype, top, left, bottom, right) "
        "values('1', 5, '', 1, 0, 0, 0, 0)",
        "insert into DataInfo(screenid, dataid, datatype) values('1', 5, 1)"}) {
    EXPECT_EQ(host.engine.exec(insert), 19) << insert;
  }
  run("insert into Attach_DB_List(dbname) values('by default')");
  EXPECT_EQ(rows("select ctime like '____-__-__ __:__:__', ctime = mtime from Attach_DB_List"), "1|1\n1|1\n");
}

}  // namespace tovrtest
