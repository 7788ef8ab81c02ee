// The region statements: their whole texts, and what the engine answers on a real file.
#include <fstream>

#include "tables/CoefRegionQueries.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

TEST(RegionQueryTest, TextsAreExactToTheBlank) {
  std::ifstream expected(TOVR_TEST_DATA "/region-statements.txt");
  for (const std::string& built :
       {cornerQuery("Coef_Info", 0, 0, 63, 127, 1, "A1"), cornerQuery("T", -1, -2, 3, 4, -5),
        areaQuery("T", -3, 2, "A'1"), typeQuery("T", 2, "A1"), areaList() + "," + cabinetList() + "," + typeList(),
        cabinetRectangles("A1"), deleteByRectangle("T"), deleteByKey("T"), renameByRectangle("T")}) {
    std::string line;
    EXPECT_TRUE(std::getline(expected, line)) << built;
    EXPECT_EQ(built, line);
  }
}

using RegionQueryFileTest = DatabaseTest;

TEST_F(RegionQueryFileTest, AnswersOnAFileOfThisSystem) {
  createFile(0);
  ASSERT_EQ(addScreen("", {0, 0, 999, 999}), 0);
  const std::pair<Rect, int> stored[] = {
      {{0, 0, 10, 20}, 1},    // 1: its last cell is the request's corner (left, top)
      {{50, 0, 99, 20}, 1},   // 2: (right, top)
      {{0, 40, 10, 99}, 1},   // 3: (left, bottom)
      {{50, 40, 99, 99}, 1},  // 4: (right, bottom)
      {{0, 0, 10, 20}, 2},    // 5: another type
      {{20, 25, 30, 35}, 1},  // 6: inside, no corner
      {{0, 25, 99, 35}, 1},   // 7: crosses, no corner
      {{0, 0, 9, 20}, 1},     // 8: a column short of it
      {{0, 0, 10, 19}, 1},    // 9: a row short of it
  };
  for (const auto& [rect, type] : stored) {
    Bytes cells(1);
    CoefData record = coef(rect, cells, 1);
    record.coeftype = type;
    ASSERT_EQ(manager->insertData(&record), 0);
  }
  const auto chosen = [&](int top, int left, int bottom, int right, int type) {
    return rows("select group_concat(id) from (" + cornerQuery("Coef_Info", top, left, bottom, right, type) + ")");
  };
  EXPECT_EQ(chosen(20, 10, 40, 50, 1), "1,2,3,4\n");
  EXPECT_EQ(chosen(20, 10, 40, 50, 2), "5\n");
  EXPECT_EQ(chosen(-5, -5, -1, -1, 1), "null\n");
  EXPECT_EQ(
      rows("select sum(areaid) from (" + areaList() + ")") + rows("select sum(coeftype) from (" + typeList() + ")"),
      "-9\n10\n");
  for (const std::string& text : {cornerQuery("Coef_Info", 0, 0, 1, 1, 1, "A"), areaQuery("Coef_Info", 1, 1, "A"),
                                  typeQuery("Coef_Info", 1, "A"), cabinetList(), cabinetRectangles("A")}) {
    EXPECT_EQ(host.engine.prepare_v2(text.c_str(), -1), 1) << text;
    EXPECT_STREQ(host.engine.errMsg(), "no such column: cabinetid");
  }
  for (const std::string& text : {deleteByRectangle("Coef_Info"), deleteByKey("Coef_Info") + "1"}) {
    EXPECT_EQ(host.engine.prepare_v2(text.c_str(), -1), 1) << text;
    EXPECT_NE(std::string(host.engine.errMsg()).find("syntax error"), std::string::npos) << host.engine.errMsg();
  }
  ASSERT_EQ(host.engine.prepare_v2(renameByRectangle("Coef_Info").c_str(), -1), 0);
  EXPECT_EQ(host.engine.bind_text(1, "New", 3, nullptr), 0);
  int parameter = 1;
  for (const int value : {25, 20, 35, 30, 1}) EXPECT_EQ(host.engine.bind_int(++parameter, value), 0);
  EXPECT_EQ(host.engine.step(), 101);
  EXPECT_EQ(rows("select id from Coef_Info where coeftablename = 'New'"), "6\n");
}

}  // namespace tovrtest
