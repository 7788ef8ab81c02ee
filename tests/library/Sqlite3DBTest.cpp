// The wrapper of the engine: safe while closed and without a statement, and free of leftovers.
#include <sqlcipher/sqlite3.h>

#include "platform/Sqlite3DB.h"
#include "storage/IDBOperate.h"
#include "storage/StatusCodes.h"
#include "tests/support/FolderTest.h"

namespace tovrtest {

using namespace tovr;

TEST(EngineTest, HeaderAndLibraryAgree) {
  EXPECT_STREQ(SQLITE_VERSION, sqlite3_libversion());
  EXPECT_EQ(sqlite3_compileoption_used("HAS_CODEC"), 1);
}

class Sqlite3DBTest : public FolderTest {
 protected:
  static int setKey(Sqlite3DB& db) { return db.setKey(kRawKey, sizeof kRawKey - 1); }

  void expectNoStatement() {
    EXPECT_EQ(db.bind_int(1, 1), SQLITE_MISUSE);
    EXPECT_EQ(db.bind_int64(1, 1), SQLITE_MISUSE);
    EXPECT_EQ(db.bind_double(1, 1), SQLITE_MISUSE);
    EXPECT_EQ(db.bind_text(1, "a", 1, nullptr), SQLITE_MISUSE);
    EXPECT_EQ(db.bind_null(1), SQLITE_MISUSE);
    EXPECT_EQ(db.bind_blob(1, "a", 1, nullptr), SQLITE_MISUSE);
    EXPECT_EQ(db.step(), SQLITE_MISUSE);
    EXPECT_EQ(db.reset(), kOk);
    EXPECT_EQ(db.finalize(), kOk);
    EXPECT_EQ(db.column_blob(0), nullptr);
    EXPECT_EQ(db.column_text(0), nullptr);
    EXPECT_EQ(db.column_bytes(0), 0);
    EXPECT_EQ(db.column_int(0), 0);
    EXPECT_EQ(db.column_double(0), 0);
  }

  void expectClosed() {
    static char* row[] = {nullptr};
    char** cells = row;
    int rows = 7;
    int columns = 7;
    expectNoStatement();
    EXPECT_EQ(db.setKey("k", 1), SQLITE_MISUSE);
    EXPECT_EQ(db.exec("select 1"), SQLITE_MISUSE);
    EXPECT_EQ(db.prepare_v2("select 1", -1), SQLITE_MISUSE);
    EXPECT_EQ(db.get_table("select 1", &cells, &rows, &columns), SQLITE_MISUSE);
    EXPECT_EQ(cells, nullptr);
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(columns, 0);
    db.free_table(cells);
  }

  Sqlite3DB db;
};

TEST_F(Sqlite3DBTest, BeforeAFileIsOpenedEverythingAnswers) {
  expectClosed();
  EXPECT_EQ(db.close(), kOk);
  EXPECT_STREQ(db.errMsg(), "no database file is open");
  EXPECT_EQ(db.open(nullptr), SQLITE_MISUSE);
}

TEST_F(Sqlite3DBTest, AFailedOpenKeepsItsReasonUntilTheClose) {
  EXPECT_EQ(db.open(path("no folder/a.db").c_str()), SQLITE_CANTOPEN);
  expectClosed();
  EXPECT_EQ(db.errCode(), SQLITE_CANTOPEN);
  EXPECT_STREQ(db.errMsg(), "unable to open database file");
  EXPECT_EQ(db.close(), kOk);
  EXPECT_EQ(db.errCode(), SQLITE_MISUSE);
  EXPECT_EQ(db.close(), kOk);
  EXPECT_EQ(db.open(path("a.db").c_str()), kOk);
}

TEST_F(Sqlite3DBTest, WithoutAStatementEverythingAnswers) {
  ASSERT_EQ(db.open(path("a.db").c_str()), kOk);
  expectNoStatement();
  EXPECT_EQ(db.prepare_v2(nullptr, 0), SQLITE_MISUSE);
  EXPECT_EQ(db.prepare_v2("nonsense", -1), SQLITE_ERROR);
  EXPECT_EQ(db.errCode(), SQLITE_ERROR);
  expectNoStatement();
  EXPECT_EQ(db.close(), kOk);
  EXPECT_EQ(db.errCode(), SQLITE_MISUSE);
  EXPECT_STREQ(db.errMsg(), "no database file is open");
  expectClosed();
}

// The engine counts the memory of its connections and statements.
TEST_F(Sqlite3DBTest, ALiveStatementIsReplacedByTheNextAndNeverKeepsAFileOpen) {
  const auto useWithoutEnd = [&](const char* name) {
    EXPECT_EQ(db.open(path(name).c_str()), kOk) << "closes the file before";
    EXPECT_EQ(setKey(db), kOk);
    EXPECT_EQ(db.exec("create table if not exists t(a); insert into t values(1), (2)"), kOk);
    EXPECT_EQ(db.prepare_v2("select count(*) from t", -1), kOk);
    EXPECT_EQ(db.step(), kStepRow);
  };
  useWithoutEnd("a.db");  // what the engine keeps for good, it has then
  EXPECT_EQ(db.close(), kOk);
  const sqlite3_int64 before = sqlite3_memory_used();
  useWithoutEnd("b.db");
  useWithoutEnd("a.db");
  EXPECT_EQ(db.column_int(0), 4);
  EXPECT_EQ(db.prepare_v2("select 7 union select 8; not read", 24), kOk);
  EXPECT_EQ(db.step(), kStepRow);
  EXPECT_EQ(db.column_int(0), 7);
  EXPECT_EQ(db.open(path("no folder/a.db").c_str()), SQLITE_CANTOPEN);
  useWithoutEnd("a.db");
  EXPECT_EQ(db.close(), kOk);
  EXPECT_EQ(sqlite3_memory_used(), before) << "after closing";
  useWithoutEnd("a.db");  // and is destroyed like this
}

class OpenSqlite3DBTest : public Sqlite3DBTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(db.open(path("a.db").c_str()), kOk);
    ASSERT_EQ(setKey(db), kOk);
    ASSERT_EQ(db.exec("create table t(a, b)"), kOk);
  }
};

TEST_F(OpenSqlite3DBTest, DestructorsOfBoundDataRunAlsoWhereTheDataIsRefused) {
  static int destroyed = 0;
  const auto destroy = +[](void*) { ++destroyed; };
  ASSERT_EQ(db.prepare_v2("insert into t values(?, ?)", -1), kOk);
  std::string text = "text";
  EXPECT_EQ(db.bind_text(1, text.data(), 4, destroy), kOk);
  EXPECT_EQ(db.bind_blob(2, text.data(), -1, destroy), SQLITE_MISUSE);
  EXPECT_EQ(db.bind_int(3, 1), SQLITE_RANGE);
  EXPECT_EQ(db.step(), kStepDone);
  EXPECT_EQ(db.finalize(), kOk);
  EXPECT_EQ(destroyed, 2);
}

TEST_F(OpenSqlite3DBTest, TablesWriteEveryOutputThatThereIs) {
  char** cells = nullptr;
  int rows = 7;
  int columns = 7;
  EXPECT_EQ(db.get_table("select 1", &cells, nullptr, &columns), kOk);
  EXPECT_EQ(columns, 1);
  db.free_table(cells);
  EXPECT_EQ(db.get_table("select 1", &cells, &rows, nullptr), kOk);
  EXPECT_EQ(rows, 1);
  db.free_table(cells);
  EXPECT_EQ(db.get_table("select 1", nullptr, &rows, &columns), SQLITE_MISUSE);
  EXPECT_EQ(rows, 0);
  EXPECT_EQ(columns, 0);
  EXPECT_EQ(db.get_table("select 1", nullptr, nullptr, nullptr), SQLITE_MISUSE);
}

TEST_F(OpenSqlite3DBTest, AFailedTableIsEmpty) {
  for (const char* sql : {"nonsense", static_cast<const char*>(nullptr)}) {
    char* row[] = {nullptr};
    char** cells = row;
    int rows = 7;
    int columns = 7;
    EXPECT_EQ(db.get_table(sql, &cells, &rows, &columns), sql == nullptr ? SQLITE_MISUSE : SQLITE_ERROR);
    EXPECT_EQ(cells, nullptr);
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(columns, 0);
  }
}

TEST_F(OpenSqlite3DBTest, AFailedStatementDoesNotHideWhyTheNextIsRefused) {
  ASSERT_EQ(db.exec("create unique index i on t(a); insert into t values(1, 1)"), kOk);
  ASSERT_EQ(db.prepare_v2("insert into t values(1, 1)", -1), kOk);
  EXPECT_EQ(db.step(), SQLITE_CONSTRAINT);
  EXPECT_EQ(db.prepare_v2("nonsense", -1), SQLITE_ERROR);
  EXPECT_EQ(db.errCode(), SQLITE_ERROR);
  EXPECT_STREQ(db.errMsg(), "near \"nonsense\": syntax error");
}

}  // namespace tovrtest
