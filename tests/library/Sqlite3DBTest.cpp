// The wrapper of the engine: safe while closed and without a statement, and free of leftovers.
#include <sqlcipher/sqlite3.h>

#include "platform/Sqlite3DB.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

class Sqlite3DBTest : public FolderTest {
 protected:
  static int setKey(Sqlite3DB& db) { return db.setKey(kRawKey, sizeof kRawKey - 1); }
  static void expectNoStatement(Sqlite3DB& db) {
    const int codes[] = {db.bind_int(1, 1),
                         db.bind_int64(1, 1),
                         db.bind_double(1, 1),
                         db.bind_text(1, "a", 1, nullptr),
                         db.bind_null(1),
                         db.bind_blob(1, "a", 1, nullptr),
                         db.step()};
    for (const int code : codes) EXPECT_EQ(code, 21);
    EXPECT_EQ(db.reset(), 0);
    EXPECT_EQ(db.finalize(), 0);
    EXPECT_TRUE(db.column_blob(0) == nullptr && db.column_text(0) == nullptr);
    EXPECT_EQ(db.column_bytes(0) + db.column_int(0) + db.column_double(0), 0);
  }
  static void expectClosed(Sqlite3DB& db) {
    char** cells = nullptr;
    int count = 0;
    expectNoStatement(db);
    for (const int code : {db.setKey("k", 1), db.exec("select 1"), db.prepare_v2("select 1", -1),
                           db.get_table("select 1", &cells, &count, &count)}) {
      EXPECT_EQ(code, 21);
    }
    db.free_table(cells);
  }
  Sqlite3DB db;
};

TEST_F(Sqlite3DBTest, HeaderAndLibraryAgree) {
  EXPECT_STREQ(SQLITE_VERSION, sqlite3_libversion());
  EXPECT_EQ(sqlite3_compileoption_used("HAS_CODEC"), 1);
}

TEST_F(Sqlite3DBTest, WhileClosedEverythingAnswersAndAFailedOpenKeepsItsReason) {
  expectClosed(db);
  EXPECT_EQ(db.close(), 0);
  EXPECT_STREQ(db.errMsg(), "no database file is open");
  EXPECT_EQ(db.open(nullptr), 21);
  EXPECT_EQ(db.open(path("no folder/a.db").c_str()), 14);
  expectClosed(db);
  EXPECT_EQ(db.errCode(), 14);
  EXPECT_STREQ(db.errMsg(), "unable to open database file");
  ASSERT_EQ(db.open(path("a.db").c_str()), 0);
  expectNoStatement(db);
  EXPECT_EQ(db.prepare_v2(nullptr, 0), 21);
  EXPECT_EQ(db.close(), 0);
  expectClosed(db);
}

TEST_F(Sqlite3DBTest, StatementsAreReplacedAndNeverKeepAFileOpen) {
  for (const char* name : {"a.db", "b.db", "a.db"}) {
    ASSERT_EQ(db.open(path(name).c_str()), 0);  // closes the file before, live statement and all
    ASSERT_EQ(setKey(db), 0);
    ASSERT_EQ(db.exec("create table if not exists t(a); insert into t values(1), (2)"), 0);
    ASSERT_EQ(db.prepare_v2("select a from t", -1), 0);
    ASSERT_EQ(db.step(), 100);
    ASSERT_EQ(db.prepare_v2("select 7 union select 8; not read", 24), 0);
    ASSERT_EQ(db.step(), 100);
    EXPECT_EQ(db.column_int(0), 7);
  }
  EXPECT_EQ(db.prepare_v2("nonsense", -1), 1);
  expectNoStatement(db);
  ASSERT_EQ(db.prepare_v2("select count(*) from t", -1), 0);
  ASSERT_EQ(db.step(), 100);
  EXPECT_EQ(db.column_int(0), 4);
  EXPECT_EQ(db.close(), 0);
  ASSERT_EQ(db.open(path("a.db").c_str()), 0);
  ASSERT_EQ(db.prepare_v2("select 1", -1), 0);
  ASSERT_EQ(db.step(), 100);  // and is destroyed like this
}

TEST_F(Sqlite3DBTest, DestructorsOfBoundDataRunAndFullOrLockedFilesAnswerTheirCodes) {
  static int destroyed = 0;
  const auto destroy = +[](void*) { ++destroyed; };
  ASSERT_EQ(db.open(path("a.db").c_str()), 0);
  ASSERT_EQ(setKey(db), 0);
  ASSERT_EQ(db.exec("create table t(a, b)"), 0);
  ASSERT_EQ(db.prepare_v2("insert into t values(?, ?)", -1), 0);
  std::string text = "text";
  EXPECT_EQ(db.bind_text(1, text.data(), 4, destroy), 0);
  EXPECT_EQ(db.bind_blob(2, text.data(), -1, destroy), 21);
  EXPECT_EQ(db.bind_int(3, 1), 25);
  EXPECT_EQ(db.step(), 101);
  EXPECT_EQ(db.finalize(), 0);
  EXPECT_EQ(destroyed, 2);
  EXPECT_EQ(db.exec("PRAGMA max_page_count = 2; insert into t values(zeroblob(100000), 0)"), 13);
  Sqlite3DB other;
  ASSERT_EQ(other.open(path("a.db").c_str()), 0);
  ASSERT_EQ(setKey(other), 0);
  ASSERT_EQ(other.exec("begin exclusive"), 0);
  EXPECT_EQ(db.exec("insert into t values(0, 0)"), 5);
  ASSERT_EQ(other.exec("rollback"), 0);
  EXPECT_EQ(db.exec("insert into t values(0, 0)"), 0);
}

TEST_F(Sqlite3DBTest, AfterCloseNothingIsLeftOfTheLastResult) {
  ASSERT_EQ(db.open(path("a.db").c_str()), 0);
  EXPECT_EQ(db.exec("nonsense"), 1);
  EXPECT_EQ(db.errCode(), 1);
  EXPECT_EQ(db.close(), 0);
  EXPECT_EQ(db.errCode(), 21);
  EXPECT_STREQ(db.errMsg(), "no database file is open");
  EXPECT_EQ(db.open(path("no folder/a.db").c_str()), 14);
  EXPECT_EQ(db.errCode(), 14);
  EXPECT_EQ(db.close(), 0);
  EXPECT_EQ(db.errCode(), 21);
  EXPECT_EQ(db.close(), 0);
}

TEST_F(Sqlite3DBTest, TablesWriteEveryOutputThatThereIs) {
  static char cell[] = "not null";
  static char* row[] = {cell};
  char** cells = row;
  int rows = 7;
  int columns = 7;
  const auto get = [&](const char* sql, char*** result, int* rowCount, int* columnCount) {
    cells = row;
    rows = columns = 7;
    return db.get_table(sql, result, rowCount, columnCount);
  };
  const auto expectNothing = [&] {
    EXPECT_EQ(cells, nullptr);
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(columns, 0);
    db.free_table(cells);
  };
  EXPECT_EQ(get("select 1", &cells, &rows, &columns), 21);
  expectNothing();
  ASSERT_EQ(db.open(path("a.db").c_str()), 0);
  EXPECT_EQ(get("nonsense", &cells, &rows, &columns), 1);
  expectNothing();
  EXPECT_EQ(get(nullptr, &cells, &rows, &columns), 21);
  expectNothing();
  EXPECT_EQ(get("select 1", nullptr, &rows, &columns), 21);
  EXPECT_EQ(rows, 0);
  EXPECT_EQ(columns, 0);
  EXPECT_EQ(get("select 1", &cells, nullptr, &columns), 0);
  EXPECT_EQ(columns, 1);
  EXPECT_STREQ(cells[1], "1");
  db.free_table(cells);
  EXPECT_EQ(get("select 1", &cells, &rows, nullptr), 0);
  EXPECT_EQ(rows, 1);
  db.free_table(cells);
  EXPECT_EQ(get("select 1", nullptr, nullptr, nullptr), 21);
}

// The engine counts the memory of its connections and statements.
TEST_F(Sqlite3DBTest, NothingOfAFileStaysWhenAnotherFollows) {
  const auto useWithoutEnd = [&](const char* name) {
    EXPECT_EQ(db.open(path(name).c_str()), 0);
    EXPECT_EQ(setKey(db), 0);
    EXPECT_EQ(db.exec("create table if not exists t(a); insert into t values(1)"), 0);
    EXPECT_EQ(db.prepare_v2("select a from t", -1), 0);
    EXPECT_EQ(db.step(), 100);
  };
  const auto failToOpen = [&] { EXPECT_EQ(db.open(path("no folder/a.db").c_str()), 14); };
  const auto keyWrongly = [&] {  // with a live statement
    EXPECT_EQ(db.open(path("a.db").c_str()), 0);
    EXPECT_EQ(db.prepare_v2("select 1", -1), 0);
    EXPECT_EQ(db.step(), 100);
    EXPECT_EQ(db.setKey("wrong", 5), 0);
    EXPECT_EQ(db.exec("select * from t"), 26);
  };
  const std::pair<const char*, std::function<void()>> ways[] = {
      {"closed", [&] { useWithoutEnd("a.db"); }},
      {"followed by another", [&] { useWithoutEnd("a.db"), useWithoutEnd("b.db"); }},
      {"followed by one that cannot be opened", [&] { useWithoutEnd("a.db"), failToOpen(); }},
      {"that cannot be opened, followed by another", [&] { failToOpen(), useWithoutEnd("a.db"); }},
      {"keyed wrongly", keyWrongly}};
  useWithoutEnd("a.db");  // what the engine keeps for good, it has then
  ASSERT_EQ(db.close(), 0);
  const sqlite3_int64 before = sqlite3_memory_used();
  for (const auto& [name, way] : ways) {
    way();
    EXPECT_EQ(db.close(), 0) << name;
    EXPECT_EQ(sqlite3_memory_used(), before) << "a file " << name;
  }
}

TEST_F(Sqlite3DBTest, AFailedStatementDoesNotHideWhyTheNextIsRefused) {
  ASSERT_EQ(db.open(path("a.db").c_str()), 0);
  ASSERT_EQ(db.exec("create table t(a not null)"), 0);
  ASSERT_EQ(db.prepare_v2("insert into t values(null)", -1), 0);
  EXPECT_EQ(db.step(), 19);
  EXPECT_EQ(db.prepare_v2("nonsense", -1), 1);
  EXPECT_EQ(db.errCode(), 1);
  EXPECT_STREQ(db.errMsg(), "near \"nonsense\": syntax error");
}

}  // namespace tovrtest
