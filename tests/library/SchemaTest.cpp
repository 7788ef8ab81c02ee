// The file format: the nine tables' texts, their order, and what the engine makes of them.
#include <fstream>

#include "tests/support/Fixture.h"

namespace tovrtest {

struct Table {
  const char* progress;  // printed before the table is made
  std::string sql;
};

// The nine tables with their columns, to the blank.
std::vector<Table> expectedTables() {
  std::vector<Table> tables = {{"start create DB Table\n", ""},
                               {"", ""},
                               {"start create Screen_Info Table\n", ""},
                               {"start create Coef_Info Table\n", ""},
                               {"", ""},
                               {"start create LumChromDataInfo Table\n", ""},
                               {"", ""},
                               {"start create DataInfo Table\n", ""},
                               {"", ""}};
  std::ifstream file(TOVR_TEST_DATA "/schema.txt");
  for (Table& table : tables) EXPECT_TRUE(std::getline(file, table.sql));
  return tables;
}

class SchemaTest : public DatabaseTest {
 protected:
  void SetUp() override { ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk); }

  std::string createTables(int expected) {
    return printedBy([&] { EXPECT_EQ(manager->createTables(), expected); });
  }
};

TEST_F(SchemaTest, AFileHoldsExactlyTheNineTablesInOrder) {
  createTables(kOk);
  createTables(kOk);  // a second time changes nothing
  Rows expected;
  for (const Table& table : expectedTables()) expected.push_back({"CREATE TABLE " + table.sql});
  EXPECT_EQ(rows("select sql from sqlite_master where type = 'table' and name not like 'sqlite_%' order by rowid"),
            expected);
}

TEST_F(SchemaTest, EveryGroupIsAnnouncedAndEveryStatementLogged) {
  std::string logged;
  int statement = 0;
  for (const Table& table : expectedTables()) {
    SCOPED_TRACE(table.sql);
    logged += table.progress + ("DataTableOperateBase::exec sql :create table if not exists " + table.sql) + "\n";
    host.points.arm(++statement);
    EXPECT_EQ(createTables(FaultyConnection::kFault).substr(0, logged.size()), logged);
    EXPECT_EQ(host.points.passed, statement) << "creation stops at the first failure";
  }
  host.points.disarm();
  EXPECT_EQ(createTables(kOk), logged);
}

}  // namespace tovrtest
