// A database file that other programs use at the same time: waiting, being busy, copying it.
#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <vector>

#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;

constexpr char kPut[] = "coef put wall.db --type 1 --at 0,0 block.npy";

struct SharedFileTest : ToolTest {
  SharedFileTest() {
    makeWall();
    write("block.npy", npy("|u1", "4, 8", payload(32)));
    succeed(kPut);
  }

  // Another program that is in the middle of `statements`.
  struct Other {
    Other(const std::string& file, const std::string& statements) : host(TOVR_PLUGIN_FILE) {
      EXPECT_EQ(host.manager().openDB(file, "the test key"), 0);
      EXPECT_EQ(host.connection().exec(statements.c_str()), 0) << host.connection().errMsg();
    }
    ~Other() { host.manager().closeDB(); }

    tovrhost::PluginHost host;
  };

  // The arguments while the other holds the file, which lets go of it after a while.
  Outcome runMeanwhile(Other& other, const std::string& arguments) const {
    auto outcome = std::async(std::launch::async, [&] { return run(arguments); });
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    EXPECT_EQ(other.host.connection().exec("rollback"), 0);
    return outcome.get();
  }
};

TEST_F(SharedFileTest, ABusyFileIsToldApartFromADamagedOne) {
  Other other(path("wall.db"), "begin exclusive");
  for (const char* arguments : {"info wall.db", "check wall.db", kPut, "backup wall.db copy.db"}) {
    expectFailure(6, "another program is using the file", "--wait 0 " + std::string(arguments));
  }
  EXPECT_FALSE(fs::exists(path("copy.db")));
}

TEST_F(SharedFileTest, WhatIsBusyForAWhileIsWaitedFor) {
  const std::string lasting = "--wait 600 ";
  for (const char* arguments : {"info wall.db", "check wall.db", kPut}) {
    Other writer(path("wall.db"), "begin exclusive");
    const Outcome outcome = runMeanwhile(writer, lasting + arguments);
    EXPECT_EQ(outcome.code, 0) << arguments << outcome.err;
  }
  Other reader(path("wall.db"), "begin; select count(*) from Coef");
  expectFailure(6, "another program is using the file", "--wait 0 " + std::string(kPut));
  const Outcome outcome = runMeanwhile(reader, lasting + kPut);
  EXPECT_EQ(outcome.code, 0) << outcome.err;
}

TEST_F(SharedFileTest, FourWritersAtOnceAllStoreTheirBlock) {
  succeed("screen add wall.db --name wide --rect 100,0,199,99");
  std::vector<std::thread> writers;
  std::vector<int> codes(4, -1);
  for (int i = 0; i < 4; ++i) {
    const std::string command = "cd '" + folder_.string() + "' && " + kKey +
                                "TOVRDB_PLUGIN='" TOVR_PLUGIN_FILE "' '" TOVRDB_PROGRAM
                                "' -q --wait 600 coef put wall.db --type 1 --at 1" +
                                std::to_string(i) + "0,0 block.npy";
    writers.emplace_back(
        [command, &code = codes[static_cast<std::size_t>(i)]] { code = std::system(command.c_str()); });
  }
  for (std::thread& writer : writers) writer.join();
  EXPECT_EQ(codes, std::vector<int>(4, 0));
  EXPECT_EQ(sql(path("wall.db"), "select count(*) from Coef_Info", "the test key"), "5\n");
}

TEST_F(SharedFileTest, ABackupIsOneCheckedStateOfAFileInUse) {
  {
    Other writer(path("wall.db"), "begin immediate; update Coef set databitwidth = 77");
    succeed("backup wall.db copy.db");
  }
  EXPECT_EQ(read("copy.db"), read("wall.db"));
  EXPECT_EQ(succeed("check copy.db").find("failed"), std::string::npos);
  expectFailure(3, "exists already", "backup wall.db copy.db");
  expectFailure(2, "would replace the file", "backup wall.db wall.db --force");
  std::string damaged = read("wall.db");
  damaged[damaged.size() / 2] = static_cast<char>(damaged[damaged.size() / 2] ^ 1);
  write("wall.db", damaged);
  expectFailure(1, "was not kept", "backup wall.db other.db");
  EXPECT_FALSE(fs::exists(path("other.db")));
  expectFailure(1, "was not kept", "backup wall.db copy.db --force");
  EXPECT_EQ(run("check copy.db").code, 0);
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
  EXPECT_EQ(succeed("check cut.db").find("failed"), std::string::npos);
  EXPECT_EQ(sql(path("cut.db"), "select version, seq from Coef, sqlite_sequence where name = 'Coef'", "the test key"),
            "[1 x uint8]|1\n");
}

}  // namespace
