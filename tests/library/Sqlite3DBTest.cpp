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
                         db.step(),
                         db.reset(),
                         db.finalize()};
    for (const int code : codes) EXPECT_EQ(code, 21);
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
  EXPECT_EQ(db.close(), 21);
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

}  // namespace tovrtest
