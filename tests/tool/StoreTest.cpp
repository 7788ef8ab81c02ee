// Storing, replacing, patching and deleting as people do it: nothing that is stored is lost without a word.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"
#include "tool/cells/Rect.h"
#include "tool/database/Session.h"

namespace {

using namespace tovrtest;

constexpr int kConflict = 7;

// wall.db finds screens by rectangle and has one, 0,0..7,3; named.db finds them by name.
struct StoreTest : ToolTest {
  StoreTest() {
    makeWall();
    succeed("create named.db --type 1");
    fs::create_directory(path("f"));
    writeBlock("whole.npy", 8, 4, 'w');
    writeBlock("part.npy", 3, 2, 'p');
  }

  std::string sql(const std::string& name, const std::string& statement) const {
    return tovrtest::sql(path(name), statement, "the test key");
  }
  std::string content(const std::string& name) const { return everything(path(name), "the test key"); }
  std::string get(const std::string& arguments) const { return succeed("coef get " + arguments + " --raw -o -"); }

  // Cells of 2 bytes.
  void writeBlock(const std::string& name, int columns, int rows, char value) const {
    write(name, npy("<u2", std::to_string(rows) + ", " + std::to_string(columns),
                    std::string(static_cast<std::size_t>(columns * rows * 2), value)));
  }
  void expectRefused(int code, const std::string& words, const std::string& arguments) const {
    const std::string before = read("wall.db") + read("named.db");
    expectFailure(code, words, arguments);
    EXPECT_TRUE(read("wall.db") + read("named.db") == before) << arguments;
  }
  void expectTold(const std::string& words, const std::string& arguments) const {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
  }
};

TEST_F(StoreTest, ByNameNoBlockTakesThePlaceOfAnotherUnasked) {
  writeBlock("f/S_T1_0,0,7,3.npy", 8, 4, 'a');
  writeBlock("f/S_T1_8,0,15,3.npy", 8, 4, 'b');
  expectRefused(kConflict, "f/S_T1_8,0,15,3.npy: 8,0..15,3 of type 1 on the screen S would replace f/S_T1_0,0,7,3.npy",
                "coef put named.db --folder f");
  const std::string put = "coef put named.db --type 1 --screen S ";
  succeed(put + "--at 0,0 whole.npy");
  expectRefused(kConflict, "would replace area 1 (0,0..7,3) of another place, the block of 64 bytes, 2 per cell, of 20",
                put + "--at 0,0 part.npy");
  expectRefused(kConflict, "--patch puts the cells into the stored block; --force", put + "--at 0,0 part.npy");
  expectTold("replaced the block of 64 bytes, 2 per cell, of 20", put + "--at 0,0 whole.npy");
  expectTold("replaced the block of 64 bytes", put + "--at 0,0 part.npy --force");
  EXPECT_EQ(get("named.db --type 1 --screen S --rect 0,0,2,1"), std::string(12, 'p'));
}

TEST_F(StoreTest, ByRectangleNoBlockHidesAnotherUnasked) {
  write("list.json", R"([{"file": "whole.npy", "type": 1, "rect": [0, 0, 7, 3]},
                         {"file": "whole.npy", "type": 1, "rect": [0, 0, 7, 3]}])");
  expectRefused(kConflict, "whole.npy too", "coef put wall.db --manifest list.json");
  succeed("coef put wall.db --type 1 --at 2,1 part.npy");
  expectRefused(kConflict, "overlaps area 1 (2,1..4,2): coef get of 2,1..4,2 would answer from area 1, which is older",
                "coef put wall.db --type 1 --at 0,0 whole.npy --backup before.db");
  expectTold("removed area 1 (2,1..4,2), the block of 12 bytes, 2 per cell, of 20",
             "coef put wall.db --type 1 --at 0,0 whole.npy --replace --backup before.db");
  EXPECT_EQ(get("before.db --type 1 --rect 2,1,4,2"), std::string(12, 'p'));
  EXPECT_EQ(get("wall.db --type 1 --rect 2,1,4,2"), std::string(12, 'w'));
  expectRefused(kConflict, "--patch puts the cells into the stored block",
                "coef put wall.db --type 1 --at 2,1 part.npy");
  succeed("coef put wall.db --type 1 --at 2,1 part.npy --beside");
  EXPECT_EQ(get("wall.db --type 1 --rect 2,1,4,2"), std::string(12, 'w'));
}

TEST_F(StoreTest, EveryConflictAndEveryBadFileOfABatchIsTold) {
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy");
  writeBlock("f/T1_2,1,4,2.npy", 3, 2, 'a');
  writeBlock("f/T1_5,1,7,2.npy", 3, 2, 'b');
  writeBlock("f/T2_0,0,2,1.npy", 3, 2, 'c');
  expectRefused(kConflict, "tovrdb: f/T1_2,1,4,2.npy: 2,1..4,2 of type 1 overlaps area 1",
                "coef put wall.db --folder f");
  expectRefused(kConflict, "tovrdb: f/T1_5,1,7,2.npy: 5,1..7,2 of type 1 overlaps area 1",
                "coef put wall.db --folder f");
  write("f/T3_0,0,2,1.npy", npy("<u2", "-2, 3", payload(12)));
  write("f/T3_3,0,5,1.npy", npy("<u2", "3, 2", payload(12)));
  expectRefused(3, "tovrdb: f/T3_0,0,2,1.npy", "coef put wall.db --folder f");
  expectRefused(3, "tovrdb: f/T3_3,0,5,1.npy", "coef put wall.db --folder f");
}

TEST_F(StoreTest, APatchChangesItsCellsAndNothingElse) {
  writeBlock("f/part.npy", 3, 2, 'q');
  for (const std::string file : {"wall.db", "named.db"}) {
    const std::string block = file + " --type 1 " + (file == "named.db" ? "--screen S " : "");
    const std::string cells = payload(64);
    write("cells", cells);
    succeed("coef put " + block + "--rect 0,0,7,3 --raw cells --cell-bytes 2 --area 3 --version-text kept");
    sql(file, "update Coef_Info set multilayersize = 1, multilayerlist = x'01000000', mtime = 'before'");
    const std::string rows = "select i.*, c.databitwidth, c.version from Coef_Info i, Coef c";
    const std::string before = sql(file, rows);
    succeed("coef put " + block + "--patch --at 5,2 part.npy");
    succeed("coef put " + block + "--patch --at 0,0 f/part.npy");
    std::string expected = cells;
    for (std::size_t row = 0; row < 2; ++row) {
      expected.replace((2 + row) * 16 + 10, 6, 6, 'p');
      expected.replace(row * 16, 6, 6, 'q');
    }
    EXPECT_EQ(get(block + "--rect 0,0,7,3"), expected);
    EXPECT_NE(sql(file, rows), before);
    sql(file, "update Coef_Info set mtime = 'before'");
    EXPECT_EQ(sql(file, rows), before);
    EXPECT_EQ(succeed("check " + file).find("failed"), std::string::npos);
    expectRefused(1, "asked for 6,0..8,1", "coef put " + block + "--patch --at 6,0 part.npy");
    expectRefused(kConflict, "which has 2 bytes per cell",
                  "coef put " + block + "--patch --rect 0,0,4,1 --raw part.npy --cell-bytes 14");
    sql(file, "update Coef set data = substr(data, 1, 16)");
    expectRefused(1, "4106", "coef put " + block + "--patch --at 0,0 part.npy");
  }
}

// The rows that the library's own insertData writes, key for key and value for value.
TEST_F(StoreTest, RowsAreThoseThatTheLibraryWrites) {
  struct Put {
    std::int32_t type;
    tovrtool::Rect rect;
    std::int32_t cellBytes;
    std::int32_t number;
  };
  const std::vector<Put> puts = {
      {1, {0, 0, 7, 3}, 2, -1}, {2, {0, 0, 3, 3}, 2, 7}, {1, {0, 0, 7, 3}, 4, -1}, {3, {0, 0, 0, 0}, 1, -1}};
  for (const std::string name : {"wall.db", "named.db"}) {
    fs::copy_file(path(name), path("library.db"), fs::copy_options::overwrite_existing);
    const bool byName = name == "named.db";
    {
      auto session = tovrtool::Session::openExisting({TOVR_PLUGIN_FILE}, path("library.db"), "the test key");
      for (const Put& put : puts) {
        auto record = session.host().makeRecord<tovr::CoefData>();
        std::string cells = payload(
            static_cast<std::size_t>(tovrtool::columnsOf(put.rect) * tovrtool::rowsOf(put.rect) * put.cellBytes));
        record->coeftype = put.type;
        record->areaid = put.number;
        record->version = "text";
        if (byName) record->screenname = "S";
        tovrtool::setRect(*record, put.rect);
        record->coefBuffer = {put.cellBytes, reinterpret_cast<unsigned char*>(cells.data()),
                              static_cast<std::int32_t>(cells.size())};
        EXPECT_EQ(session.manager().insertData(record.get()), 0);
        write("cells", cells);
        const std::string edges = std::to_string(put.rect.left) + "," + std::to_string(put.rect.top) + "," +
                                  std::to_string(put.rect.right) + "," + std::to_string(put.rect.bottom);
        succeed("coef put " + name + " --force --raw cells --type " + std::to_string(put.type) + " --rect " + edges +
                " --cell-bytes " + std::to_string(put.cellBytes) + " --area=" + std::to_string(put.number) +
                " --version-text text" + (byName ? " --screen S" : ""));
      }
    }
    for (const std::string& file : {name, std::string("library.db")}) {
      for (const char* table : {"Coef_Info", "Screen_Info"}) {
        sql(file, std::string("update ") + table + " set ctime = 'a time' where ctime glob '20*-*-* *:*:*'");
        sql(file, std::string("update ") + table + " set mtime = 'a time' where mtime glob '20*-*-* *:*:*'");
      }
    }
    EXPECT_EQ(content(name), content("library.db"));
  }
}

TEST_F(StoreTest, WhatIsDeletedIsNamedAndNothingElseGoes) {
  write("data.bin", "some data");
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy");
  succeed("coef put wall.db --type 2 --at 2,1 part.npy");
  succeed("coef put wall.db --type 3 --at 2,1 part.npy");
  expectRefused(2, "this deletes area 2 (2,1..4,2), the block of 12 bytes, 2 per cell, of 20",
                "coef delete wall.db --id 2");
  expectRefused(1, "there is no area 9", "coef delete wall.db --id 2,9 --force");
  expectRefused(1, "areas of type 1: area 1 (0,0..7,3)", "coef delete wall.db --type 1 --rect 0,0,6,3 --force");
  succeed("coef delete wall.db --id 2 --force");
  succeed("coef delete wall.db --type 3 --rect 2,1,4,2 --force");
  EXPECT_EQ(get("wall.db --type 1 --rect 0,0,7,3"), std::string(64, 'w'));
  EXPECT_EQ(sql("wall.db", "select id from Coef"), "1\n");

  succeed("data put wall.db --type 5 data.bin");
  expectRefused(kConflict, "data of type 5 belongs to the screen left", "screen delete wall.db --name left --force");
  expectRefused(2, "this deletes data of type 5", "data delete wall.db --type 5");
  succeed("data delete wall.db --type 5 --force");
  expectRefused(kConflict, "has areas: area 1 (0,0..7,3)", "screen delete wall.db --name left --force");
  expectRefused(2, "this deletes screen left (0,0..7,3); area 1", "screen delete wall.db --name left --with-areas");
  succeed("screen delete wall.db --name left --with-areas --force");
  EXPECT_EQ(sql("wall.db", "select count(*) from Coef union all select count(*) from Screen_Info"), "0\n0\n");
  EXPECT_EQ(succeed("check wall.db").find("failed"), std::string::npos);
}

}  // namespace
