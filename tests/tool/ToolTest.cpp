// tovrdb as its users run it: a process with arguments, an environment and streams.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;

std::string crop(const std::string& cells, std::size_t columns, std::size_t cellBytes, std::size_t left,
                 std::size_t top, std::size_t width, std::size_t height) {
  std::string part;
  for (std::size_t y = top; y < top + height; ++y)
    part += cells.substr((y * columns + left) * cellBytes, width * cellBytes);
  return part;
}

TEST_F(ToolTest, BlocksOfEveryKindComeBackToTheByte) {
  struct Case {
    const char* name;
    const char* descr;
    const char* shape;
    const char* partShape;
    std::size_t cellBytes;
  };
  const Case cases[] = {{"uint8", "|u1", "4, 8", "2, 3, 1", 1},
                        {"uint16", "<u2", "4, 8, 9", "2, 3, 9", 18},
                        {"int32", "<i4", "4, 8, 3, 3", "2, 3, 9", 36},
                        {"float16", "<f2", "4, 8, 5", "2, 3, 5", 10},
                        {"float64", "<f8", "4, 8, 2", "2, 3, 2", 16}};
  makeWall();
  int type = 0;
  for (const Case& c : cases) {
    const std::string cells = payload(32 * c.cellBytes);
    const std::string about = "--type " + std::to_string(++type) + " ";
    write("block.npy", npy(c.descr, c.shape, cells));
    succeed("coef put wall.db " + about + "--at 0,0 block.npy");
    succeed("coef get wall.db " + about + "--rect 2,1,4,2 --force -o part.npy --dtype " + c.name);
    EXPECT_EQ(read("part.npy"), npy(c.descr, c.partShape, crop(cells, 8, c.cellBytes, 2, 1, 3, 2))) << c.name;
    EXPECT_EQ(succeed("coef get wall.db " + about + "--rect 0,0,7,3 --raw -o -"), cells) << c.name;
  }
}

TEST_F(ToolTest, ScreensByNameTakeBareCellsAndAddTheScreen) {
  succeed("create wall.db --type 1");
  const std::string cells = payload(6 * 5);
  write("cells.bin", cells);
  const std::string area = "wall.db --type 2 --screen 'the left one' --rect 10,20,12,21 ";
  expectFailure(2, "say which with --screen",
                "coef put wall.db --type 2 --rect 10,20,12,21 --raw cells.bin --cell-bytes 5");
  expectFailure(3, "30 bytes", "coef put " + area + "--raw cells.bin --cell-bytes 4");
  succeed("coef put " + area + "--raw cells.bin --cell-bytes 5");
  EXPECT_EQ(succeed("coef get " + area + "--raw -o -"), cells);
  write("cells.bin", cells.substr(15) + cells.substr(0, 15));
  succeed("coef put " + area + "--update --raw cells.bin --cell-bytes 5");
  EXPECT_EQ(succeed("coef get " + area + "--raw -o -"), cells.substr(15) + cells.substr(0, 15));
  expectFailure(1, "4112: no screen has that name",
                "coef get wall.db --type 2 --screen no --rect 10,20,12,21 -o x.npy");
  EXPECT_NE(succeed("screen list wall.db").find("the left one  10,20..12,21"), std::string::npos);
}

TEST_F(ToolTest, PartOfASampleIsCutOutOfTheWhole) {
  const std::string wall = "--size 50x40 --cabinet 16x12 --raw -o - ";
  const std::string whole = succeed("sample " + wall);
  ASSERT_EQ(whole.size(), 50U * 40 * 18);
  EXPECT_EQ(succeed("sample " + wall + "--rect 13,9,33,26"), crop(whole, 50, 18, 13, 9, 21, 18));
  EXPECT_NE(succeed("sample " + wall + "--seed 8"), whole);
  // Cells differ from one another, and the diagonal is that of a correction: near, and mostly below, 1.
  EXPECT_NE(whole.substr(0, 18), whole.substr(18, 18));
  for (std::size_t cell = 0; cell < 2000; ++cell) {
    for (const std::size_t element : {0U, 4U, 8U}) {
      const std::size_t at = cell * 18 + element * 2;
      const int number = static_cast<unsigned char>(whole[at]) + 256 * static_cast<unsigned char>(whole[at + 1]);
      ASSERT_GT(number, 16384 * 3 / 10) << cell;
      ASSERT_LT(number, 16384 * 12 / 10) << cell;
    }
  }
  EXPECT_NE(run("sample " + wall).err.find("SYNTHETIC"), std::string::npos);
}

TEST_F(ToolTest, FilesThatAreNoDatabaseAreToldApart) {
  makeWall();
  write("empty.db", "");
  write("text.db", payload(4096));
  write("plain.db", "SQLite format 3" + std::string(1009, '\0'));
  expectFailure(3, "there is no such file", "info missing.db");
  EXPECT_FALSE(fs::exists(path("missing.db")));
  expectFailure(3, "is empty", "info empty.db");
  expectFailure(3, "not an encrypted one", "info plain.db");
  expectFailure(4, "not a database", "info text.db");
  expectFailure(4, "the key is wrong", "info wall.db", "TOVRDB_KEY=another ");
  expectFailure(4, "no key", "info wall.db", kNoKey);
  expectFailure(4, "the key is empty", "info wall.db", "TOVRDB_KEY= ");
  write("key", "the test key\r\nand a note\n");
  EXPECT_EQ(run("info wall.db --key-file key", "TOVRDB_KEY=another ").code, 0);
  expectFailure(5, "cannot load the plug-in", "inspect --plugin nowhere.so");
}

TEST_F(ToolTest, RefusalsSayWhatThereIsInstead) {
  makeWall();
  write("block.npy", npy("<u2", "4, 8", payload(64)).substr(0, 100));
  expectFailure(3, "block.npy cannot be used: it is truncated", "coef put wall.db --type 1 --at 0,0 block.npy");
  write("block.npy", npy("<u2", "4, 8", payload(64)));
  expectFailure(1, "4116: no screen holds the rectangle", "coef put wall.db --type 1 --at 1,0 block.npy");
  expectFailure(1, "screens: left (0,0..7,3)", "coef put wall.db --type 1 --at 1,0 block.npy");
  expectFailure(2, "inverted", "coef put wall.db --type 1 --rect 7,0,0,3 block.npy");
  expectFailure(2, "--type is required", "coef put wall.db --at 0,0 block.npy");
  expectFailure(2, "--rect or --at is required", "coef put wall.db --type 1 block.npy");
  EXPECT_EQ(succeed("coef list wall.db").find("left"), std::string::npos) << "nothing was stored";

  succeed("coef put wall.db --type 1 --at 0,0 block.npy");
  expectFailure(1, "areas that overlap it: 1 (0,0..7,3)", "coef get wall.db --type 1 --rect 0,0,8,3 -o out.npy");
  expectFailure(3, "not a whole number", "coef get wall.db --type 1 --rect 0,0,7,3 --dtype uint32 -o out.npy");
  EXPECT_FALSE(fs::exists(path("out.npy")));
  EXPECT_EQ(succeed("coef get wall.db --type 1 --rect 1,1,2,1 --dtype uint8 --csv -o -"),
            "column,row,value0,value1\n1,1,156,193\n2,1,230,12\n");
}

TEST_F(ToolTest, ExistingFilesAreReplacedOnlyOnDemandAndNeverHalf) {
  makeWall();
  const std::string before = read("wall.db");
  expectFailure(3, "exists already", "create wall.db --type 1");
  EXPECT_EQ(read("wall.db"), before);

  write("out", "precious");
  expectFailure(3, "exists already", "sample --size 4x4 -o out");
  expectFailure(1, "4113", "coef get wall.db --type 1 --rect 0,0,1,1 --force -o out");
  EXPECT_EQ(read("out"), "precious");
  succeed("sample --size 4x4 --raw --force -o out");
  EXPECT_EQ(fs::file_size(path("out")), 4U * 4 * 18);

  expectFailure(2, "would replace the database", "coef get wall.db --type 1 --rect 0,0,1,1 --force -o ./wall.db");
  expectFailure(2, "write into the database", "coef list wall.db --log wall.db");
  EXPECT_EQ(read("wall.db"), before);
  expectFailure(3, "there is no folder", "create nowhere/wall.db --type 0");
  expectFailure(3, "cannot create nowhere/out", "sample --size 4x4 -o nowhere/out");
  for (const auto& entry : fs::directory_iterator(folder_)) {
    EXPECT_EQ(entry.path().string().find("unfinished"), std::string::npos) << entry.path();
  }
}

TEST_F(ToolTest, ResultsAreFreeOfTheLibrarysLinesAndTheLogHasThem) {
  const std::string line = "DataTableOperateBase::exec sql :";
  EXPECT_EQ(succeed("create wall.db --type 0 --name 'my wall' --log lines.txt"), "");
  EXPECT_NE(read("lines.txt").find(line), std::string::npos);
  EXPECT_NE(run("create other.db --type 0 --verbose").err.find(line), std::string::npos);
  succeed("screen add wall.db --name left --rect 0,0,7,3");
  EXPECT_EQ(succeed("screen list wall.db"), "id  name  rectangle  columns  rows\n 1  left  0,0..7,3         8     4\n");
  EXPECT_EQ(succeed("coef list wall.db"),
            "id  screen  type  area  rectangle  block  cell bytes  stored bytes  version\n");
  const std::string info = succeed("info wall.db");
  EXPECT_EQ(info.rfind("file               wall.db\ndatabase type      0 ", 0), 0U) << info;
  EXPECT_NE(info.find("name               my wall\n"), std::string::npos) << info;
  EXPECT_NE(info.find("Screen_Info          1  "), std::string::npos) << info;
  const std::string inspected = succeed("inspect");
  for (const char* name : {"dbmanagerplugin", "cpp.DBManager", "cpp.DBOperate", "cpp.Encryption"}) {
    EXPECT_NE(inspected.find(name), std::string::npos) << inspected;
  }
  // What cannot be written is no success.
  expectFailure(3, "cannot write the results", "info wall.db >/dev/full");
  expectFailure(3, "standard output is closed", "info wall.db >&-");
}

TEST_F(ToolTest, MeasurementsAreKeptUnderAKeyAndSayWhatIsLost) {
  makeWall();
  const std::string bytes = payload(1001);
  write("measured.bin", bytes);
  for (const char* key : {"1", "2"}) {
    const Outcome put = run("measure put wall.db --type 3 --rect 0,0,7,3 measured.bin");
    EXPECT_EQ(put.code, 0);
    EXPECT_EQ(put.out, std::string(key) + "\n");
    EXPECT_NE(put.err.find("code 19"), std::string::npos) << put.err;
    EXPECT_NE(put.err.find("under key " + std::string(key)), std::string::npos) << put.err;
  }
  EXPECT_EQ(succeed("measure get wall.db --id 2 -o -"), bytes);
  expectFailure(1, "no measurement has the key 3", "measure get wall.db --id 3 -o -");
  expectFailure(2, "give --yes", "measure clear wall.db");
  EXPECT_EQ(succeed("measure get wall.db --id 1 -o -"), bytes);
  succeed("measure clear wall.db --yes");
  EXPECT_EQ(succeed("measure list wall.db"), "id  stored bytes  version  type  rectangle\n");
}

TEST_F(ToolTest, DataOfATypeIsReplacedByTheNext) {
  succeed("create wall.db --type 0");
  write("data.bin", "first");
  expectFailure(1, "the file has none", "data put wall.db --type 5 data.bin");
  succeed("screen add wall.db --name left --rect 0,0,7,3");
  expectFailure(1, "already", "screen add wall.db --name left --rect 0,0,1,1");
  succeed("data put wall.db --type 5 data.bin");
  EXPECT_EQ(succeed("data get wall.db --type 5 -o -"), "first");
  EXPECT_EQ(run("data put wall.db --type 5 -", kKey, payload(100)).code, 0);
  EXPECT_EQ(succeed("data get wall.db --type 5 -o -"), payload(100));
  EXPECT_NE(succeed("info wall.db").find("Data                 1  "), std::string::npos);
  expectFailure(1, "4097", "data get wall.db --type 6 -o -");
}

}  // namespace
