// The operator of screens.
#include <stdexcept>

#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr Rect kFirst{1, 2, 3, 4};
constexpr Rect kSecond{-9, -8, -7, -6};

class ScreenTest : public DatabaseTest {
 protected:
  void SetUp() override {
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("it's \xC3\xA9", kFirst), kOk);
    ASSERT_EQ(addScreen("", kSecond), kOk);
  }
  ScreenInfoDataResult result;
};

TEST_F(ScreenTest, FieldsAreStoredInTheirColumns) {
  EXPECT_EQ(lastStatement(),
            "insert into Screen_Info(dbid, screenname, top, left, bottom,              right, ctime, mtime) values "
            "(?, ?, ?, ?, ?, ?, datetime('now','localtime'), datetime('now','localtime'))");
  EXPECT_EQ(rows("select id, dbid, screenname, left, top, right, bottom from Screen_Info"),
            (Rows{{"1", "1", "it's \xC3\xA9", "1", "2", "3", "4"}, {"2", "1", "", "-9", "-8", "-7", "-6"}}));
}

TEST_F(ScreenTest, FieldsComeBackInTheirPlacesAndArePrintedInTheOrderOfTheirColumns) {
  result.screens.resize(5);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->queryData(&result), kOk); }),
            "1|1|it's \xC3\xA9|2|1|4|3 \n2|1||-8|-9|-6|-7 \n");
  ASSERT_EQ(result.screens.size(), 2U);
  EXPECT_EQ(result.screens[0].screenname, "it's \xC3\xA9");
  EXPECT_EQ(rectOf(result.screens[0]), kFirst);
  EXPECT_EQ(result.screens[1].id, 2);
  EXPECT_EQ(result.screens[1].dbid, 1);
  EXPECT_EQ(result.screens[1].screenname, "");
  EXPECT_EQ(result.screens[1].areaid, -1);
  EXPECT_EQ(rectOf(result.screens[1]), kSecond);
}

TEST_F(ScreenTest, AnUpdateRewritesNameAndEdgesOfItsKey) {
  ScreenInfoData changed;
  changed.id = 2;
  changed.dbid = 55;
  changed.screenname = "moved";
  setRect(changed, {10, 20, 30, 40});
  EXPECT_EQ(manager->updateData(&changed), kOk);
  EXPECT_EQ(rows("select dbid, screenname, left, top, right, bottom from Screen_Info"),
            (Rows{{"1", "it's \xC3\xA9", "1", "2", "3", "4"}, {"1", "moved", "10", "20", "30", "40"}}))
      << "the parent is not rewritten";
  changed.id = -3;
  EXPECT_EQ(manager->updateData(&changed), kOk) << "there is no such row";
  EXPECT_EQ(lastStatement(),
            "update Screen_Info set screenname = ?, top = ?, left = ?, bottom = ?, right = ? where id = -3");
}

TEST_F(ScreenTest, ScreensAreNeverClearedAndOneScreenIsNotAList) {
  ScreenInfoData screen;
  EXPECT_EQ(manager->queryData(&screen), kInvalidRecord);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->deleteData(&screen), SQLITE_ERROR); }),
            "DataTableOperateBase::exec sql :delete * from Screen_Info\n");
  EXPECT_EQ(countOf("Screen_Info"), 2);
}

// Tables that another program has made.
class ForeignScreenTest : public DatabaseTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
    run("create table Screen_Info(id, dbid, screenname, top, left, bottom, right)");
    result.screens.resize(2);
  }
  ScreenInfoData queryRow(const std::string& values) {
    run("delete from Screen_Info; insert into Screen_Info values(" + values + ")");
    EXPECT_EQ(manager->queryData(&result), kOk) << values;
    return result.screens.at(0);
  }
  template <class Exception>
  void expectThrown(const std::string& values, const std::string& text) {
    try {
      queryRow(values);
      ADD_FAILURE() << values << " is read";
    } catch (const Exception& error) {
      EXPECT_EQ(error.what(), text) << values;
    }
  }
  ScreenInfoDataResult result;
};

TEST_F(ForeignScreenTest, AnEmptyTableEmptiesTheListAndWithoutOneItStays) {
  run("alter table Screen_Info rename to Elsewhere");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->queryData(&result), SQLITE_ERROR); }), "");
  EXPECT_EQ(result.screens.size(), 2U);
  run("alter table Elsewhere rename to Screen_Info");
  EXPECT_EQ(manager->queryData(&result), kOk);
  EXPECT_EQ(result.screens.size(), 0U);
}

TEST_F(ForeignScreenTest, NumbersAreReadAsFarAsTheyGoAndTextsAsTheyStand) {
  EXPECT_EQ(queryRow("1, 1, null, ' \t12abc', 0, 0, 0").top, 12);
  EXPECT_EQ(queryRow("1, 1, null, 0, 0, 0, 0").screenname, "");
  EXPECT_EQ(queryRow("1, 1, '', '-2147483648', 0, 0, 0").top, -2147483647 - 1);
  EXPECT_EQ(queryRow("1, 1, '%n%s', 0, 0, 0, 0").screenname, "%n%s");
}

TEST_F(ForeignScreenTest, WhatIsNoNumberIsThrownWithTheSameTextOnEveryPlatform) {
  expectThrown<std::invalid_argument>("1, 1, 'a', 'x1', 0, 0, 0", "invalid stoi argument");
  expectThrown<std::invalid_argument>("1, 1, 'a', '', 0, 0, 0", "invalid stoi argument");
  expectThrown<std::invalid_argument>("1, 1, 'a', 0, 0, 0, null", "invalid stoi argument");
  expectThrown<std::out_of_range>("1, 1, 'a', 0, 0, 2147483648, 0", "stoi argument out of range");
  expectThrown<std::out_of_range>("1, '-99999999999999999999', 'a', 0, 0, 0, 0", "stoi argument out of range");
  EXPECT_EQ(queryRow("1, 1, 'well again', 5, 0, 0, 0").top, 5);
}

// Points of an insert: prepare, then six binds, of which the first that fails is the last.
TEST_F(ScreenTest, Insert_BindFails) {
  for (int point = 2; point <= 7; ++point) {
    host.points.arm(point);
    EXPECT_EQ(addScreen("wall", kFirst), FaultyConnection::kFault);
    EXPECT_EQ(host.points.passed, point);
    host.points.disarm();
  }
  EXPECT_EQ(countOf("Screen_Info"), 2);
}

// Points of an update: prepare, the name, then top, left, bottom and right.
TEST_F(ScreenTest, AnUpdateBindsEveryEdgeWhateverTheBindsAnswer) {
  run("PRAGMA foreign_keys = OFF; drop table Screen_Info; create table Screen_Info(id, screenname, top, left, bottom, "
      "right)");
  ScreenInfoData screen;
  screen.id = 1;
  screen.screenname = "wall";
  setRect(screen, {10, 20, 30, 40});
  for (std::size_t failing = 0; failing < 5; ++failing) {
    run("delete from Screen_Info; insert into Screen_Info(id) values(1)");
    host.points.arm(2 + static_cast<int>(failing));
    EXPECT_EQ(manager->updateData(&screen), kOk);
    host.points.disarm();
    Rows stored = {{"wall", "20", "10", "40", "30"}};
    stored[0][failing] = "null";
    EXPECT_EQ(rows("select screenname, top, left, bottom, right from Screen_Info"), stored);
  }
}

}  // namespace tovrtest
