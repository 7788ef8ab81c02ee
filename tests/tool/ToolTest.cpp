// tovrdb as its users run it: what comes back of what was stored, and what is refused with which words.
#include <gtest/gtest.h>

#include <string>

#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;

// Of cells that are 8 a row: those of the rectangle 2,1,4,2.
std::string partOf(const std::string& cells, std::size_t cellBytes) {
  return cells.substr((8 + 2) * cellBytes, 3 * cellBytes) + cells.substr((16 + 2) * cellBytes, 3 * cellBytes);
}

TEST_F(ToolTest, PartOfASampleIsCutOutOfTheWhole) {
  const std::string wall = "sample --size 8x40 --cabinet 5x12 --raw -o - ";
  EXPECT_EQ(succeed(wall + "--rect 2,1,4,2"), partOf(succeed(wall), 18));
  EXPECT_NE(succeed(wall + "--seed 8"), succeed(wall));
  expectTold("SYNTHETIC", wall);
}

TEST_F(ToolTest, BlocksOfEveryKindComeBackToTheByte) {
  const struct {
    const char* name;
    const char* descr;
    const char* shape;
    const char* partShape;
    std::size_t cellBytes;
  } cases[] = {{"uint8", "|u1", "4, 8", "2, 3, 1", 1},
               {"uint16", "<u2", "4, 8, 9", "2, 3, 9", 18},
               {"int32", "<i4", "4, 8, 3, 3", "2, 3, 9", 36}};
  makeWall();
  int type = 0;
  for (const auto& c : cases) {
    const std::string cells = payload(32 * c.cellBytes);
    const std::string about = "wall.db --type " + std::to_string(++type) + " ";
    write("block.npy", npy(c.descr, c.shape, cells));
    succeed("coef put " + about + "--at 0,0 block.npy");
    succeed("coef get " + about + "--rect 2,1,4,2 --force -o part.npy --dtype " + c.name);
    EXPECT_EQ(read("part.npy"), npy(c.descr, c.partShape, partOf(cells, c.cellBytes))) << c.name;
    EXPECT_EQ(succeed("coef get " + about + "--rect 0,0,7,3 --raw -o -"), cells) << c.name;
  }
}

TEST_F(ToolTest, RefusalsSayWhatThereIsInstead) {
  makeWall();
  const std::string put = "coef put wall.db --type 1 block.npy ";
  write("block.npy", npy("<u2", "4, 8", payload(64)).substr(0, 100));
  expectFailure(3, "block.npy cannot be used: it is truncated", put + "--at 0,0");
  write("block.npy", npy("<u2", "4, 8", payload(64)));
  expectFailure(1, "4116: no screen holds the rectangle", put + "--at 1,0");
  expectFailure(2, "inverted", put + "--rect 7,0,0,3");
  expectFailure(2, "--type is required", "coef put wall.db --at 0,0 block.npy");
  expectFailure(3, "needs 160 bytes; the input has 64",
                "coef put wall.db --type 1 --rect 0,0,7,3 --raw cells --cell-bytes 5");
  expectFailure(5, "cannot load the plug-in", "inspect --plugin nowhere.so");
  EXPECT_EQ(succeed("coef list wall.db").find("left"), std::string::npos) << "nothing was stored";

  succeed(put + "--at 0,0");
  expectFailure(1, "areas that overlap it: 1 (0,0,7,3)", "coef get wall.db --type 1 --rect 0,0,8,3 -o out.npy");
  expectFailure(3, "not a whole number", "coef get wall.db --type 1 --rect 0,0,7,3 --dtype uint32 -o out.npy");
  EXPECT_FALSE(fs::exists(path("out.npy")));
}

TEST_F(ToolTest, ExistingFilesAreReplacedOnlyOnDemandAndNeverHalf) {
  makeWall();
  const std::string before = read("wall.db");
  write("out", "precious");
  expectFailure(3, "exists already", "create wall.db --type 1");
  expectFailure(3, "exists already", "sample --size 4x4 -o out");
  expectFailure(1, "4113", "coef get wall.db --type 1 --rect 0,0,1,1 --force -o out");
  EXPECT_EQ(read("out"), "precious");
  succeed("sample --size 4x4 --raw --force -o out");
  EXPECT_EQ(fs::file_size(path("out")), 4U * 4 * 18);

  expectFailure(2, "would replace wall.db", "coef get wall.db --type 1 --rect 0,0,1,1 --force -o ./wall.db");
  expectFailure(2, "write into the database", "coef list wall.db --log wall.db");
  EXPECT_EQ(read("wall.db"), before);
  expectFailure(3, "cannot create nowhere/out", "sample --size 4x4 -o nowhere/out");
  EXPECT_FALSE(anythingUnfinished());
}

TEST_F(ToolTest, ResultsAreFreeOfTheLibrarysLinesAndTheLogHasThem) {
  const std::string line = "DataTableOperateBase::exec sql :";
  EXPECT_EQ(succeed("create wall.db --type 0 --name 'my wall' --log lines.txt"), "");
  EXPECT_TRUE(contains(read("lines.txt"), line));
  expectTold(line, "create other.db --type 0 --verbose");
  succeed("screen add wall.db --name left --rect 0,0,7,3");
  EXPECT_EQ(succeed("screen list wall.db"), "id  name  rectangle  columns  rows\n 1  left  0,0,7,3          8     4\n");
  const std::string info = succeed("info wall.db");
  EXPECT_EQ(info.rfind("file               wall.db\ndatabase type      0 ", 0), 0U) << info;
  EXPECT_TRUE(contains(info, "name               my wall\n"));
  EXPECT_TRUE(contains(succeed("inspect"), "cpp.DBOperate"));
  EXPECT_TRUE(contains(succeed("inspect --json"), "\"message_handler\": true"));
  // What cannot be written is no success.
  expectFailure(9, "cannot write the results", "info wall.db >/dev/full");
  expectFailure(3, "standard output is closed", "info wall.db >&-");
}

TEST_F(ToolTest, MeasurementsAreKeptUnderAKeyAndSayWhatIsLost) {
  makeWall();
  const std::string put = "measure put wall.db --type 3 --rect 0,0,7,3 ";
  write("first", "another");
  EXPECT_EQ(succeed(put + "first"), "1\n");
  const Outcome second = run(put + "cells");
  EXPECT_EQ(second.out, "2\n");
  EXPECT_TRUE(contains(second.err, "code 19"));
  EXPECT_TRUE(contains(second.err, "under key 2"));
  EXPECT_EQ(succeed("measure get wall.db --id 2 -o -"), payload(64));
  expectFailure(1, "no measurement has the key 3", "measure get wall.db --id 3 -o -");
  expectFailure(2, "give --force", "measure clear wall.db");
  EXPECT_EQ(succeed("measure get wall.db --id 1 -o -"), "another");
  succeed("measure clear wall.db --force");
  EXPECT_EQ(succeed("measure list wall.db"), "id  stored bytes  version  type  rectangle\n");
}

TEST_F(ToolTest, DataOfATypeIsReplacedByTheNext) {
  succeed("create wall.db --type 0");
  expectFailure(1, "the file has none", "data put wall.db --type 5 cells");
  succeed("screen add wall.db --name left --rect 0,0,7,3");
  expectFailure(7, "already", "screen add wall.db --name left --rect 0,0,1,1");
  succeed("data put wall.db --type 5 cells");
  EXPECT_EQ(succeed("data get wall.db --type 5 -o -"), payload(64));
  EXPECT_EQ(run("data put wall.db --type 5 -", kKey, "piped").code, 0);
  EXPECT_EQ(succeed("data get wall.db --type 5 -o -"), "piped");
  expectFailure(1, "4097", "data get wall.db --type 6 -o -");
}

}  // namespace
