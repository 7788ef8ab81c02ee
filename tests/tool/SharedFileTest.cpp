// A database file that other programs use at the same time: waiting, being busy, copying it, replacing it.
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "client/base/Error.h"
#include "client/files/NewFiles.h"
#include "client/session/Session.h"
#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"

namespace {

std::function<void()> whileFlushing;  // runs when this process flushes a file

}  // namespace

// Takes the place of the C library's for the code that is linked into this program.
extern "C" int fsync(int descriptor) {
  if (whileFlushing) whileFlushing();
  return fdatasync(descriptor);
}

namespace {

using namespace tovrtest;
using namespace std::string_literals;

const std::string kPut = "coef put wall.db --rect 0,0,7,3 --raw cells --cell-bytes 2 --type 1";

// Another program that is in the middle of `statements`.
struct Other {
  Other(const std::string& file, const std::string& statements) : host(TOVR_PLUGIN_FILE) {
    EXPECT_EQ(host.manager().openDB(file, kWordKey), 0);
    EXPECT_EQ(host.connection().exec(statements.c_str()), 0) << host.connection().errMsg();
  }
  ~Other() { host.manager().closeDB(); }

  tovrhost::PluginHost host;
};

struct SharedFileTest : ToolTest {
  SharedFileTest() {
    makeWall();
    succeed(kPut);
  }

  // The program succeeds while the other holds the file, which lets go of it after a while.
  void expectWaits(Other& other, const std::string& arguments) const {
    auto outcome = std::async(std::launch::async, [&] { return succeed("--wait 600 " + arguments); });
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    EXPECT_EQ(other.host.connection().exec("rollback"), 0);
    outcome.get();
  }
};

TEST_F(SharedFileTest, ABusyFileIsToldApartFromADamagedOne) {
  Other other(path("wall.db"), "begin exclusive");
  for (const std::string& arguments : {"info wall.db"s, "check wall.db"s, "backup wall.db copy.db"s, kPut}) {
    expectFailure(6, "another program is using the file", "--wait 0 " + arguments);
  }
  EXPECT_FALSE(fs::exists(path("copy.db")));
}

TEST_F(SharedFileTest, WhatIsBusyForAWhileIsWaitedFor) {
  for (const std::string& arguments : {"info wall.db"s, "check wall.db"s, kPut}) {
    Other writer(path("wall.db"), "begin exclusive");
    expectWaits(writer, arguments);
  }
  Other reader(path("wall.db"), "begin; select count(*) from Coef");
  expectFailure(6, "another program is using the file", "--wait 0 " + kPut);
  expectWaits(reader, kPut);
}

TEST_F(SharedFileTest, FourWritersAtOnceAllStoreTheirBlock) {
  std::vector<std::future<int>> writers;
  for (const char* digit : {"2", "3", "4", "5"}) {  // the types 12 to 15
    const std::string put = commandLine("-q --wait 600 " + kPut + digit);
    writers.push_back(std::async(std::launch::async, [put] { return std::system(put.c_str()); }));
  }
  for (std::future<int>& writer : writers) EXPECT_EQ(writer.get(), 0);
  EXPECT_EQ(sql(path("wall.db"), "select count(*) from Coef_Info"), "5\n");
}

TEST_F(SharedFileTest, ABackupIsOneCheckedStateOfAFileInUse) {
  {
    Other writer(path("wall.db"), "begin immediate; update Coef set databitwidth = 77");
    succeed("backup wall.db copy.db");
  }
  EXPECT_EQ(read("copy.db"), read("wall.db"));
  expectSound("copy.db");
  expectFailure(3, "exists already", "backup wall.db copy.db");
  expectFailure(2, "would replace the file", "backup wall.db wall.db --force");
  std::string damaged = read("wall.db");
  damaged[damaged.size() / 2] = static_cast<char>(damaged[damaged.size() / 2] ^ 1);
  write("wall.db", damaged);
  expectFailure(8, "was not kept", "backup wall.db other.db");
  EXPECT_FALSE(fs::exists(path("other.db")));
  expectFailure(8, "was not kept", "backup wall.db copy.db --force");
  expectSound("copy.db");
}

TEST_F(SharedFileTest, Backup_WalMode) {
  auto host = std::make_unique<Other>(path("wall.db"), "pragma journal_mode = wal; update Coef set version = 'kept'");
  succeed("backup wall.db copy.db");
  EXPECT_TRUE(contains(succeed("coef list copy.db"), "kept"));
  // A reader keeps the log from being emptied, a writer from being left alone.
  for (const char* statements :
       {"begin; select count(*) from Coef", "begin immediate; update Coef set version = 'no'"}) {
    EXPECT_EQ(host->host.connection().exec("update Coef set version = 'kept'"), 0);
    EXPECT_EQ(host->host.connection().exec(statements), 0);
    const bool reads = statements[6] == ' ';
    if (reads) succeed("data put wall.db --type 3 cells");
    expectFailure(6, "another program is using the file", "--wait 0 backup wall.db other.db");
    expectWaits(*host, "backup wall.db copy.db --force");
  }
  // What a crashed host leaves.
  EXPECT_EQ(host->host.connection().exec("update Coef set version = 'crashed'"), 0);
  fs::copy_file(path("wall.db"), path("left.db"));
  fs::copy_file(path("wall.db-wal"), path("left.db-wal"));
  succeed("backup left.db copy.db --force");
  EXPECT_TRUE(contains(succeed("coef list copy.db"), "crashed"));
  expectSound("copy.db");
}

TEST_F(SharedFileTest, Rekey_LocksUntilReplaced) {
  std::vector<int> others;
  whileFlushing = [&] { others.push_back(run("--wait 0 " + kPut + "2").code); };
  tovrdb::rewriteFile({TOVR_PLUGIN_FILE, 0}, path("wall.db"), kWordKey, "another key", "rekey");
  whileFlushing = nullptr;
  EXPECT_EQ(others, (std::vector<int>{6, 4})) << "the new file is flushed, then the folder with the new name";
  EXPECT_EQ(sql(path("wall.db"), "select count(*) from Coef", "another key"), "1\n");
}

TEST_F(SharedFileTest, Rekey_FileStaysOpenElsewhere) {
  const std::string environment = "TOVRDB_NEW_KEY='the test key' " + std::string(kKey);
  {
    auto session = tovrdb::Session::openExisting({TOVR_PLUGIN_FILE, 0}, path("wall.db"), kWordKey);
    EXPECT_EQ(run("rekey wall.db", environment).code, 0);
    EXPECT_THROW(tovrdb::Transaction transaction(session), tovrdb::Error);
  }
  Other other(path("wall.db"), "select 1");
  EXPECT_EQ(run("rekey wall.db", environment).code, 0);
  EXPECT_EQ(other.host.connection().exec("select * from Coef"), 0);
  EXPECT_EQ(other.host.connection().exec("delete from Coef"), 8);  // SQLITE_READONLY
}

TEST_F(SharedFileTest, Rekey_WalMode) {
  const std::string environment = "TOVRDB_NEW_KEY=other " + std::string(kKey);
  {
    Other host(path("wall.db"), "pragma journal_mode = wal; update Coef set version = 'kept'");
    expectFailure(6, "another program is using the file", "--wait 0 rekey wall.db", environment);
  }
  EXPECT_NE(run("rekey wall.db", environment + "prlimit --fsize=8192 ").code, 0);
  EXPECT_EQ(sql(path("wall.db"), "pragma journal_mode"), "wal\n");
  EXPECT_EQ(run("rekey wall.db", environment).code, 0);
  EXPECT_EQ(sql(path("wall.db"), "select version from Coef", "other"), "kept\n");
  EXPECT_EQ(sql(path("wall.db"), "pragma journal_mode", "other"), "wal\n");
  EXPECT_FALSE(fs::exists(path("wall.db-wal")));
}

// A killed writer leaves a journal that is empty, has no header, or holds a change; PERSIST leaves the second kind.
TEST_F(SharedFileTest, Replace_JournalIsLeft) {
  succeed("backup wall.db copy.db");
  succeed("export wall.db folder");
  write("key", "the test key\n");
  for (const std::string& name : {"-journal"s, "-wal"s, "-shm"s}) {
    for (const std::string& command :
         {"rekey copy.db --new-key-file key"s, "backup wall.db copy.db --force"s, "import folder copy.db --force"s}) {
      write("copy.db" + name, name == "-wal" ? "" : std::string(512, '\0'));
      succeed(command);
      EXPECT_FALSE(fs::exists(path("copy.db" + name))) << command;
    }
  }
  {
    Other writer(path("wall.db"),
                 "pragma cache_size = 1; begin; update Coef set version = 'unfinished';"
                 "create table more(x); insert into more values (zeroblob(99999))");
    expectFailure(6, "another program is using it", "import folder wall.db --force");
    fs::copy_file(path("wall.db"), path("copy.db"), fs::copy_options::overwrite_existing);
    fs::copy_file(path("wall.db-journal"), path("copy.db-journal"));
  }
  fs::copy_file(path("copy.db-journal"), path("none.db-journal"));
  expectFailure(3, "that is no longer there", "backup wall.db none.db");
  expectFailure(3, "as tovrdb info does", "backup wall.db copy.db --force");
  succeed("info copy.db");
  succeed("backup wall.db copy.db --force");
  EXPECT_EQ(everything(path("copy.db")), everything(path("wall.db")));
}

TEST_F(SharedFileTest, AFileWhoseFirstBytesAPowerCutToreOpensAtOnce) {
  {
    Other writer(path("wall.db"),
                 "begin; update Coef set version = 'another'; delete from sqlite_sequence;"
                 "create table more(x); insert into more values (zeroblob(9999))");
    std::string torn = read("wall.db");
    torn.replace(0, 16, "torn torn torn !");
    write("cut.db", torn);
    fs::copy_file(path("wall.db-journal"), path("cut.db-journal"));
  }
  succeed("info cut.db");
  expectSound("cut.db");
  EXPECT_EQ(sql(path("cut.db"), "select version, seq from Coef, sqlite_sequence where name = 'Coef'"), "|1\n");
}

}  // namespace
