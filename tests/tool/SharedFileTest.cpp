// A database file that other programs use at the same time: waiting, being busy, copying it.
#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <vector>

#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"

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
  expectFailure(1, "was not kept", "backup wall.db other.db");
  EXPECT_FALSE(fs::exists(path("other.db")));
  expectFailure(1, "was not kept", "backup wall.db copy.db --force");
  expectSound("copy.db");
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
