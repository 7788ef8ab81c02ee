// The file format: the nine tables' texts, their order, and what the engine makes of them.
#include "tests/Fixture.h"

namespace tovrtest {

struct Statement {
  const char* table;
  const char* columns;
};

constexpr Statement kStatements[] = {
    {"DB_Info",
     "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,    dbname   VCHAR(60)      NOT NULL,    dbtype   INTEGER        "
     "NOT NULL,    datastructversion   VCHAR(60)      NOT NULL,    softwareversion   VCHAR(60)      NOT NULL,    "
     "softwaretype   VCHAR(60)      NOT NULL,    dbversion   VCHAR(60)      NOT NULL,    ctime   TimeStamp NOT NULL "
     "DEFAULT (datetime('now', 'localtime')),    mtime   TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')))"},
    {"Attach_DB_List",
     "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,    dbname   VCHAR(60)      NOT NULL,    ctime    TimeStamp NOT "
     "NULL DEFAULT (datetime('now', 'localtime')),    mtime    TimeStamp NOT NULL DEFAULT (datetime('now', "
     "'localtime')))"},
    {"Screen_Info",
     "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,    dbid         INTEGER      NOT NULL,    screenname   "
     "VCHAR(60),    top            INTEGER      NOT NULL,    left           INTEGER      NOT NULL,    bottom         "
     "INTEGER      NOT NULL,    right          INTEGER      NOT NULL,    ctime TimeStamp NOT NULL DEFAULT "
     "(datetime('now','localtime')),    mtime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),    foreign "
     "key (dbid)  references Attach_DB_List(id))"},
    {"Coef",
     " (id INTEGER PRIMARY KEY AUTOINCREMENT,    data BLOB NOT NULL,    databitwidth INTEGER NOT NULL,    version "
     "VCHAR(60) NOT NULL)"},
    {"Coef_Info",
     "(    id INTEGER PRIMARY KEY      AUTOINCREMENT,    screenid        INTEGER      NOT NULL,    coefid          "
     "INTEGER      NOT NULL,    coeftablename   VCHAR(60) NOT NULL,    coeftype        INTEGER      NOT NULL,    "
     "areaid          INTEGER      NOT NULL,    top             INTEGER      NOT NULL,    left            INTEGER      "
     "NOT NULL,    bottom          INTEGER      NOT NULL,    right           INTEGER      NOT NULL,    "
     "multilayersize  INTEGER      ,    multilayerlist  BLOB         ,    ctime TimeStamp NOT NULL DEFAULT "
     "(datetime('now','localtime')),    mtime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),    foreign "
     "key(screenid)  references Screen_Info(id),     foreign key(coefid)  references Coef(id))"},
    {"LumChromData",
     "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,    data          BLOB     NOT NULL,    version  VCHAR(60)     "
     "NOT NULL)"},
    {"LumChromDataInfo",
     "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,    screenid VCHAR(60)      NOT NULL,    dataid         INTEGER    "
     "  NOT NULL,    datatablename VCHAR(60) NOT NULL,    datatype       INTEGER      NOT NULL,    top            "
     "INTEGER      NOT NULL,    left           INTEGER      NOT NULL,    bottom         INTEGER      NOT NULL,    "
     "right          INTEGER      NOT NULL,    ctime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),    "
     "mtime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),    foreign key(screenid)  references "
     "Screen_Info(id),     foreign key(dataid)  references LumChromData(id))"},
    {"Data",
     " (    id INTEGER PRIMARY KEY     AUTOINCREMENT,    data          BLOB     NOT NULL,    version  VCHAR(60)     "
     "NOT NULL)"},
    {"DataInfo",
     "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,    screenid VCHAR(60)      NOT NULL,    dataid         INTEGER    "
     "  NOT NULL,    datatype       INTEGER      NOT NULL,    ctime      TimeStamp NOT NULL DEFAULT (datetime('now', "
     "'localtime')),    mtime      TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')),    foreign key(screenid) "
     " references Screen_Info(id),     foreign key(dataid)  references Data(id))"},
};

constexpr const char* kProgress[] = {"start create DB Table\n", "start create Screen_Info Table\n",
                                     "start create Coef_Info Table\n", "start create LumChromDataInfo Table\n",
                                     "start create DataInfo Table\n"};
constexpr int kGroupOf[] = {0, 0, 1, 2, 2, 3, 3, 4, 4};

using SchemaTest = DatabaseTest;

TEST_F(SchemaTest, TheFileHoldsExactlyTheNineTablesInOrder) {
  std::string logged;
  std::string held;
  int group = -1;
  for (int i = 0; i < 9; ++i) {
    if (kGroupOf[i] != group) logged += kProgress[group = kGroupOf[i]];
    const std::string text = std::string(kStatements[i].table) + kStatements[i].columns;
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
