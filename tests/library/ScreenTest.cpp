// The operator of screens.
#include "tests/support/Fixture.h"

namespace tovrtest {

using ScreenTest = DatabaseTest;

TEST_F(ScreenTest, EdgesAndNamesComeBackInTheirPlaces) {
  createFile(0);
  ASSERT_EQ(addScreen("it's \xC3\xA9", {1, 2, 3, 4}), 0);
  ASSERT_EQ(addScreen("", {-9, -8, -7, -6}), 0);
  EXPECT_EQ(host.connection.statements.back(),
            "insert into Screen_Info(dbid, screenname, top, left, bottom,              right, ctime, mtime) values "
            "(?, ?, ?, ?, ?, ?, datetime('now','localtime'), datetime('now','localtime'))");
  const std::string stored = "select id, dbid, screenname, left, top, right, bottom from Screen_Info";
  EXPECT_EQ(rows(stored), "1|1|it's \xC3\xA9|1|2|3|4\n2|1||-9|-8|-7|-6\n");
  ScreenInfoDataResult result;
  result.screens.resize(5);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->queryData(&result), 0); }),
            "1|1|it's \xC3\xA9|2|1|4|3 \n2|1||-8|-9|-6|-7 \n");
  ASSERT_EQ(result.screens.size(), 2U);
  ScreenInfoData changed = result.screens[1];
  EXPECT_EQ(result.screens[0].screenname + changed.screenname, "it's \xC3\xA9");
  EXPECT_TRUE(rectOf(result.screens[0]) == (Rect{1, 2, 3, 4}) && rectOf(changed) == (Rect{-9, -8, -7, -6}));
  EXPECT_EQ(changed.id * 100 + changed.dbid * 10 + changed.areaid, 209);

  changed.screenname = "moved";
  changed.dbid = 55;  // not rewritten
  setRect(changed, {10, 20, 30, 40});
  EXPECT_EQ(manager->updateData(&changed), 0);
  changed.id = -3;
  EXPECT_EQ(manager->updateData(&changed), 0);  // no such row
  EXPECT_EQ(host.connection.statements.back(),
            "update Screen_Info set screenname = ?, top = ?, left = ?, bottom = ?, right = ? where id = -3");
  EXPECT_EQ(rows(stored), "1|1|it's \xC3\xA9|1|2|3|4\n2|1|moved|10|20|30|40\n");
  EXPECT_EQ(manager->queryData(&changed), 4096);  // one screen is not a list
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->deleteData(&changed), 1); }),
            "DataTableOperateBase::exec sql :delete * from Screen_Info\n");
  EXPECT_EQ(rows("select count(*) from Screen_Info"), "2\n");  // never cleared
}

TEST_F(ScreenTest, CellsOfOtherProgramsAreReadSafely) {
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
  ScreenInfoDataResult result;
  result.screens.resize(2);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->queryData(&result), 1); }), "");  // no such table
  EXPECT_EQ(result.screens.size(), 2U);
  run("create table Screen_Info(id, dbid, screenname, top, left, bottom, right)");
  EXPECT_EQ(manager->queryData(&result), 0);
  EXPECT_TRUE(result.screens.empty());
  const auto query = [&](const std::string& values) {
    run("delete from Screen_Info; insert into Screen_Info values(" + values + ")");
    try {
      EXPECT_EQ(manager->queryData(&result), 0);
      return result.screens.at(0).screenname + "," + std::to_string(result.screens.at(0).top);
    } catch (const std::invalid_argument& error) {
      return std::string("invalid: ") + error.what();
    } catch (const std::out_of_range& error) {
      return std::string("range: ") + error.what();
    }
  };
  const std::pair<const char*, const char*> cases[] = {
      {"1, 1, null, ' \t12abc', 0, 0, 0", ",12"},
      {"1, 1, '%n%s', '-2147483648', 0, 0, 0", "%n%s,-2147483648"},
      {"1, 1, 'a', 'x1', 0, 0, 0", "invalid: invalid stoi argument"},
      {"1, 1, 'a', '', 0, 0, 0", "invalid: invalid stoi argument"},
      {"1, 1, 'a', 0, 0, 0, null", "invalid: invalid stoi argument"},
      {"1, 1, 'a', 0, 0, 2147483648, 0", "range: stoi argument out of range"},
      {"1, '-99999999999999999999', 'a', 0, 0, 0, 0", "range: stoi argument out of range"},
      {"1, 1, 'well again', 5, 0, 0, 0", "well again,5"}};
  for (const auto& [values, expected] : cases) EXPECT_EQ(query(values), expected) << values;
}

// Points of an update: prepare, the name, then top, left, bottom and right.
TEST_F(ScreenTest, AnUpdateBindsEveryEdgeWhateverTheBindsAnswer) {
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
  run("create table Screen_Info(id, screenname, top, left, bottom, right)");
  ScreenInfoData screen;
  screen.id = 1;
  screen.screenname = "wall";
  setRect(screen, {10, 20, 30, 40});
  const char* const stored[] = {"null|20|10|40|30\n", "wall|null|10|40|30\n", "wall|20|null|40|30\n",
                                "wall|20|10|null|30\n", "wall|20|10|40|null\n"};
  for (int parameter = 1; parameter <= 5; ++parameter) {
    run("delete from Screen_Info; insert into Screen_Info(id) values(1)");
    host.points.arm(1 + parameter);
    EXPECT_EQ(manager->updateData(&screen), 0);
    host.points.disarm();
    EXPECT_EQ(rows("select screenname, top, left, bottom, right from Screen_Info"), stored[parameter - 1]);
  }
}

}  // namespace tovrtest
