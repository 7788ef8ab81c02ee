// Storing, replacing, patching and deleting as people do it: nothing that is stored is lost without a word. What is
// objected to, StorePlanTest has.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "client/cells/Rect.h"
#include "client/session/Session.h"
#include "client/storing/Changes.h"
#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;

constexpr int kConflict = 7;

// wall.db finds screens by rectangle and has one, 0,0,7,3; named.db finds them by name.
struct StoreTest : ToolTest {
  StoreTest() {
    makeWall();
    succeed("create named.db --type 1");
    fs::create_directory(path("f"));
    writeBlock("whole.npy", 8, 4, 'w');
    writeBlock("part.npy", 3, 2, 'p');
  }

  std::string get(const std::string& arguments) const { return succeed("coef get " + arguments + " --raw -o -"); }

  // Cells of 2 bytes.
  void writeBlock(const std::string& name, int columns, int rows, char value) const {
    write(name, npy("<u2", std::to_string(rows) + ", " + std::to_string(columns),
                    std::string(static_cast<std::size_t>(columns * rows * 2), value)));
  }
  static std::ptrdiff_t count(const std::string& text, char character) {
    return std::count(text.begin(), text.end(), character);
  }
  void expectRefused(int code, const std::string& words, const std::string& arguments) const {
    const std::string wall = read("wall.db");
    const std::string named = read("named.db");
    expectFailure(code, words, arguments);
    EXPECT_TRUE(read("wall.db") == wall) << arguments;
    EXPECT_TRUE(read("named.db") == named) << arguments;
  }
};

TEST_F(StoreTest, ByNameABlockOfAnotherPlaceIsReplacedOnlyOnDemandAndNamed) {
  const std::string put = "coef put named.db --type 1 --screen S ";
  expectRefused(2, "say which with --screen", "coef put named.db --type 1 --at 0,0 whole.npy");
  succeed(put + "--at 0,0 whole.npy");
  expectRefused(kConflict,
                "would replace area 1 (0,0,7,3) of another rectangle, the block of 64 bytes, 2 per cell, of 20",
                put + "--at 0,0 part.npy");
  expectTold("replaced the block of 64 bytes, 2 per cell, of 20", put + "--at 0,0 part.npy --force");
  EXPECT_EQ(get("named.db --type 1 --screen S --rect 0,0,2,1"), std::string(12, 'p'));
  succeed(put + "--update --force --at 8,8 whole.npy");
  EXPECT_EQ(get("named.db --type 1 --screen S --rect 8,8,15,11"), std::string(64, 'w'));
  EXPECT_EQ(sql(path("named.db"), "select left, top, right, bottom from Screen_Info"), "8|8|15|11\n");
  expectFailure(1, "4112: no screen has that name", "coef get named.db --type 1 --screen T --rect 8,8,9,9 -o x.npy");
}

TEST_F(StoreTest, ByRectangleAHiddenBlockIsRemovedOnlyOnDemandAndBackedUpBefore) {
  const std::string put = "coef put wall.db --type 1 --at 0,0 whole.npy --backup before.db";
  succeed("coef put wall.db --type 1 --at 2,1 part.npy");
  expectRefused(kConflict, "overlaps area 1 (2,1,4,2)", put);
  expectTold("removed area 1 (2,1,4,2), the block of 12 bytes, 2 per cell, of 20", put + " --replace");
  EXPECT_EQ(get("before.db --type 1 --rect 2,1,4,2"), std::string(12, 'p'));
  EXPECT_EQ(get("wall.db --type 1 --rect 2,1,4,2"), std::string(12, 'w'));
  expectRefused(kConflict, "--patch puts the cells into the stored block",
                "coef put wall.db --type 1 --at 2,1 part.npy");
}

TEST_F(StoreTest, OfABatchEveryConflictAndEveryBadFileIsToldAndNothingStored) {
  const std::string put = "coef put wall.db --folder f";
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy");
  writeBlock("f/T2_0,0,2,1.npy", 3, 2, 'c');
  writeBlock("f/T1_2,1,4,2.npy", 3, 2, 'a');
  writeBlock("f/T1_5,1,7,2.npy", 3, 2, 'b');
  expectRefused(kConflict, "tovrdb: f/T1_2,1,4,2.npy: 2,1,4,2 of type 1 overlaps area 1", put);
  expectRefused(kConflict, "tovrdb: f/T1_5,1,7,2.npy: 5,1,7,2 of type 1 overlaps area 1", put);
  write("f/T3_0,0,2,1.npy", npy("<u2", "-2, 3", payload(12)));
  write("f/T3_3,0,5,1.npy", npy("<u2", "3, 2", payload(12)));
  expectRefused(3, "tovrdb: f/T3_0,0,2,1.npy", put);
  expectRefused(3, "tovrdb: f/T3_3,0,5,1.npy", put);
}

TEST_F(StoreTest, AManifestNamesFilesOfItsFolderThatFitTheirRectangles) {
  write("list.json", R"([{"file": "part.npy", "type": 8, "rect": [0, 0, 7, 3]}])");
  expectRefused(3, "does not fit the rectangle", "coef put wall.db --manifest list.json");
  write("f/list.json", R"([{"file": "../part.npy", "type": 8, "rect": [0, 0, 2, 1]}])");
  expectRefused(3, "leads out of", "coef put wall.db --manifest f/list.json");
}

TEST_F(StoreTest, APatchChangesItsCellsAndNothingElse) {
  for (const std::string file : {"wall.db", "named.db"}) {
    const std::string block = file + " --type 1 " + (file == "named.db" ? "--screen S " : "");
    succeed("coef put " + block + "--rect 0,0,7,3 --raw cells --cell-bytes 2 --area 3 --version-text kept");
    sql(path(file), "update Coef_Info set multilayersize = 1, multilayerlist = x'01000000', mtime = 'before'");
    const std::string rows = "select i.*, c.databitwidth, c.version from Coef_Info i, Coef c";
    const std::string before = sql(path(file), rows);
    succeed("coef put " + block + "--patch --at 5,2 part.npy");
    std::string expected = payload(64);
    expected.replace(2 * 16 + 10, 6, "pppppp");
    expected.replace(3 * 16 + 10, 6, "pppppp");
    EXPECT_EQ(get(block + "--rect 0,0,7,3"), expected);
    EXPECT_NE(sql(path(file), rows), before);
    sql(path(file), "update Coef_Info set mtime = 'before'");
    EXPECT_EQ(sql(path(file), rows), before);
    expectSound(file);
    expectRefused(1, "holds the whole patch, 6,0,8,1; it overlaps area 1 (0,0,7,3)",
                  "coef put " + block + "--patch --at 6,0 part.npy");
    sql(path(file), "update Coef set data = substr(data, 1, 16)");
    expectRefused(8, "damaged: its block is too short", "coef put " + block + "--patch --at 0,0 part.npy");
  }
}

TEST_F(StoreTest, Apply_FailureUndoesAllChanges) {
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy");
  const std::string before = everything(path("wall.db"));
  {
    auto session = tovrdb::Session::openExisting({TOVR_PLUGIN_FILE}, path("wall.db"), kWordKey);
    const auto missing = []() -> tovrdb::CellBlock { throw tovrdb::Error(tovrdb::kFileProblem, "it is gone"); };
    const auto plan = [&](tovrdb::Session& file) {
      return tovrdb::ChangePlan{{tovrdb::AddMeasurement{1, {}, "", Bytes(8)}, tovrdb::PutData{2, "", Bytes(8), 1},
                                 tovrdb::DeleteAreas{tovrdb::storedAreas(file)}, tovrdb::AddScreen{1, "new", {}},
                                 tovrdb::AddBlock{{{2, "", {0, 0, 1, 1}}, 1, -1, "", missing}}},
                                {}};
    };
    EXPECT_THROW(tovrdb::applyChanges(session, plan), tovrdb::Error);
    session.close();
  }
  EXPECT_EQ(everything(path("wall.db")), before);
}

// The rows that the library's own insertData writes, key for key and value for value.
TEST_F(StoreTest, RowsAreThoseThatTheLibraryWrites) {
  const struct {
    std::int32_t type;
    tovrdb::Rect rect;
    std::int32_t cellBytes;
    std::int32_t number;
    const char* arguments;
  } puts[] = {{1, {0, 0, 7, 3}, 2, -1, "--type 1 --rect 0,0,7,3 --cell-bytes 2"},
              {2, {0, 0, 3, 3}, 4, 7, "--type 2 --rect 0,0,3,3 --cell-bytes 4 --area 7"},
              {1, {0, 0, 7, 3}, 2, -1, "--type 1 --rect 0,0,7,3 --cell-bytes 2"}};
  for (const std::string name : {"wall.db", "named.db"}) {
    const std::string library = path("library of " + name);
    const std::string screen = name == "named.db" ? "S" : "";
    fs::copy_file(path(name), library);
    for (const auto& put : puts) {
      auto session = tovrdb::Session::openExisting({TOVR_PLUGIN_FILE}, library, kWordKey);
      Bytes cells = keptPayload();
      auto record = session.host().makeRecord<tovr::CoefData>();
      record->coeftype = put.type;
      record->areaid = put.number;
      record->version = "text";
      record->screenname = screen;
      tovrdb::setRect(*record, put.rect);
      record->coefBuffer = {put.cellBytes, cells.data(), 64};
      EXPECT_EQ(session.manager().insertData(record.get()), 0);
      succeed("coef put " + name + " --raw cells --version-text text " + put.arguments +
              (screen.empty() ? "" : " --screen S"));
    }
    for (const std::string& file : {path(name), library}) {
      for (const char* table : {"Coef_Info", "Screen_Info"}) {
        sql(file, std::string("update ") + table + " set ctime = 'a time' where ctime glob '20*-*-* *:*:*'");
        sql(file, std::string("update ") + table + " set mtime = 'a time' where mtime glob '20*-*-* *:*:*'");
      }
    }
    EXPECT_EQ(everything(path(name)), everything(library));
  }
}

TEST_F(StoreTest, WhatIsDeletedIsNamedAndNothingElseGoes) {
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy");
  succeed("coef put wall.db --type 2 --at 2,1 part.npy");
  expectRefused(2, "this deletes area 2 (2,1,4,2), the block of 12 bytes, 2 per cell, of 20",
                "coef delete wall.db --id 2");
  expectRefused(1, "there is no area 3-9", "coef delete wall.db --id 2,3-9 --force");
  expectRefused(2, "'2-1' is not an id or a range", "coef delete wall.db --id 2-1 --force");
  expectRefused(1, "no such area", "coef delete wall.db --type 3 --force");
  EXPECT_EQ(count(succeed("coef list wall.db --rect 5,0,6,0"), '\n'), 2);
  EXPECT_EQ(count(succeed("coef list wall.db --screen left --type 2"), '\n'), 2);
  expectFailure(1, "4112", "coef list wall.db --screen Left");
  expectRefused(1, "areas of type 1: area 1 (0,0,7,3)", "coef delete wall.db --type 1 --rect 0,0,6,3 --force");
  expectTold("deleted 1 area\n", "coef delete wall.db --id 2-5 --force");
  EXPECT_EQ(get("wall.db --type 1 --rect 0,0,7,3"), std::string(64, 'w'));
  EXPECT_EQ(sql(path("wall.db"), "select id from Coef"), "1\n");
  expectTold("deleted 1 area\n", "coef delete wall.db --type 1 --screen left --force");
}

TEST_F(StoreTest, AScreenGoesOnlyWithoutDataAndWithItsAreasOnlyOnDemand) {
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy");
  succeed("data put wall.db --type 5 cells");
  expectTold("replaced the data of type 5, 72 stored bytes, of 20", "data put wall.db --type 5 cells");
  expectRefused(kConflict, "data belongs to the screen left: type 5, 72 stored bytes, of 20",
                "screen delete wall.db --name left --force");
  expectRefused(2, "this deletes data of type 5", "data delete wall.db --type 5");
  succeed("data delete wall.db --type 5 --force");
  expectRefused(kConflict, "has areas: area 1 (0,0,7,3)", "screen delete wall.db --name left --force");
  succeed("screen delete wall.db --name left --with-areas --force");
  EXPECT_EQ(sql(path("wall.db"), "select count(*) from Coef union all select count(*) from Screen_Info"), "0\n0\n");
}

// The library files data under the screen that was added last, there or not.
TEST_F(StoreTest, DataPut_LastScreenDeleted) {
  succeed("screen add wall.db --name right --rect 8,0,15,3");
  expectTold("hosts cannot store data in this file", "screen delete wall.db --name right --force");
  expectTold("belongs to the screen left", "data put wall.db --type 5 cells");
  EXPECT_EQ(succeed("data get wall.db --type 5 -o -"), payload(64));
  EXPECT_EQ(sql(path("wall.db"), "select seq from sqlite_sequence where name = 'Screen_Info'"), "2\n");
  expectSound("wall.db");
}

TEST_F(StoreTest, Screen_HiddenOrDoubtful) {
  const std::string add = "screen add wall.db --rect 0,0,3,3 --name ";
  expectRefused(kConflict, "there is a screen 'left' already", add + "left --force");
  expectRefused(kConflict, "the screen left (0,0,7,3) holds all cells of 0,0,3,3", add + "right");
  expectRefused(kConflict, "the name 'LEFT ' differs from the screen 'left' only in case", add + "'LEFT '");
  succeed(add + "right --force");
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy");
  expectRefused(kConflict, "there is a screen 'right' already", "screen rename wall.db left right --force");
  expectRefused(kConflict, "'Right' differs from the screen 'right'", "screen rename wall.db left Right");
  succeed("screen rename wall.db left LEFT");
  succeed("coef list wall.db --screen LEFT --type 1");
  expectRefused(1, "4112", "screen rename wall.db left x");
  const std::string put = "coef put named.db --type 1 --at 0,0 whole.npy --screen ";
  succeed(put + "left");
  expectRefused(kConflict, "--new-screen adds such a screen", put + "lefT");
  expectTold("there was no screen lefT", put + "lefT --new-screen");
}

// What is told about the numbers; what conflicts, StorePlanTest has.
TEST_F(StoreTest, Force_NamesBothForms) {
  succeed("coef put wall.db --type 1 --at 0,0 whole.npy --scale 1/4");
  write("half.npy", npy("<f2", "4, 8", std::string(64, 'h')));
  const std::string put = "coef put wall.db --type 1 --at 0,0 half.npy ";
  expectRefused(kConflict, "--force does it anyway", put);
  expectRefused(kConflict, "--force does it anyway", put + "--patch");
  expectTold(
      "keeps its numbers as 1 x uint16, scale 1/4; the patch 0,0,7,3, which was 1 x float16, is now read the same "
      "way",
      put + "--patch --force");
  expectTold("its numbers were 1 x uint16, scale 1/4 and are now 1 x float16", put + "--force");
}

}  // namespace
