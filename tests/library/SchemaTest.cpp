// The file format: the nine tables' texts, their order, and what the engine makes of them.
#include <fstream>
#include <iterator>

#include "tests/support/Fixture.h"

namespace tovrtest {

// What is printed before each of the nine tables is made.
constexpr const char* kProgress[] = {"start create DB Table\n",
                                     "",
                                     "start create Screen_Info Table\n",
                                     "start create Coef_Info Table\n",
                                     "",
                                     "start create LumChromDataInfo Table\n",
                                     "",
                                     "start create DataInfo Table\n",
                                     ""};

// The nine tables with their columns, to the blank.
std::vector<std::string> expectedTables() {
  std::ifstream file(TOVR_TEST_DATA "/schema.txt");
  std::vector<std::string> lines(std::size(kProgress));
  for (std::string& line : lines) EXPECT_TRUE(std::getline(file, line));
  return lines;
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
  for (const std::string& table : expectedTables()) expected.push_back({"CREATE TABLE " + table});
  EXPECT_EQ(rows("select sql from sqlite_master where type = 'table' and name not like 'sqlite_%' order by rowid"),
            expected);
}

TEST_F(SchemaTest, EveryGroupIsAnnouncedAndEveryStatementLogged) {
  std::string logged;
  std::size_t statement = 0;
  for (const std::string& table : expectedTables()) {
    SCOPED_TRACE(table);
    logged += kProgress[statement++];
    logged += "DataTableOperateBase::exec sql :create table if not exists " + table + "\n";
    host.points.arm(static_cast<int>(statement));
    EXPECT_EQ(createTables(FaultyConnection::kFault).substr(0, logged.size()), logged);
    EXPECT_EQ(host.points.passed, static_cast<int>(statement)) << "creation stops at the first failure";
  }
  host.points.disarm();
  EXPECT_EQ(createTables(kOk), logged);
}

}  // namespace tovrtest
