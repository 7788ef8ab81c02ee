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

class RegionQueryFileTest : public DatabaseTest {
 protected:
  void SetUp() override {
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("", {0, 0, 999, 999}), kOk);
  }

  void store(const Rect& rect, int type = 1) {
    Bytes cells(1);
    CoefData record = coef(rect, cells, 1);
    record.coeftype = type;
    ASSERT_EQ(manager->insertData(&record), kOk);
  }
  // The keys of the areas that hold a corner of the rectangle.
  Rows cornersOf(const Rect& rect, int type) {
    return rows("select id from (" + cornerQuery("Coef_Info", rect.top, rect.left, rect.bottom, rect.right, type) +
                ") order by id");
  }
  void expectError(const std::string& sql, const std::string& text) {
    EXPECT_EQ(host.engine.prepare_v2(sql.c_str(), -1), SQLITE_ERROR) << sql;
    EXPECT_NE(std::string(host.engine.errMsg()).find(text), std::string::npos) << sql << ": " << host.engine.errMsg();
  }
};

TEST_F(RegionQueryFileTest, TheCornerQueryFindsTheAreasOfItsTypeThatHoldACorner) {
  constexpr Rect kAsked{10, 20, 50, 40};
  store({0, 0, 10, 20});     // 1: its last cell is the corner left, top
  store({50, 0, 99, 20});    // 2: right, top
  store({0, 40, 10, 99});    // 3: left, bottom
  store({50, 40, 99, 99});   // 4: right, bottom
  store({0, 0, 10, 20}, 2);  // 5: another type
  store({20, 25, 30, 35});   // inside, no corner
  store({0, 25, 99, 35});    // crosses, no corner
  store({0, 0, 9, 20});      // a column short of the corner
  store({0, 0, 10, 19});     // a row short of it
  EXPECT_EQ(cornersOf(kAsked, 1), (Rows{{"1"}, {"2"}, {"3"}, {"4"}}));
  EXPECT_EQ(cornersOf(kAsked, 2), (Rows{{"5"}}));
  EXPECT_EQ(cornersOf({-5, -5, -1, -1}, 1), Rows{});
}

TEST_F(RegionQueryFileTest, ListsGiveAValueForEveryArea) {
  store({0, 0, 1, 1});
  store({0, 0, 1, 1}, 2);
  EXPECT_EQ(rows(areaList()), (Rows{{"-1"}, {"-1"}}));
  EXPECT_EQ(rows(typeList()), (Rows{{"1"}, {"2"}}));
}

TEST_F(RegionQueryFileTest, WhatAsksForACabinetIsRefusedAsThereIsNoSuchColumn) {
  expectError(cornerQuery("Coef_Info", 0, 0, 1, 1, 1, "A"), "no such column: cabinetid");
  expectError(areaQuery("Coef_Info", 1, 1, "A"), "no such column: cabinetid");
  expectError(typeQuery("Coef_Info", 1, "A"), "no such column: cabinetid");
  expectError(cabinetList(), "no such column: cabinetid");
  expectError(cabinetRectangles("A"), "no such column: cabinetid");
}

TEST_F(RegionQueryFileTest, DeletionsAreNotValidSql) {
  expectError(deleteByRectangle("Coef_Info"), "syntax error");
  expectError(deleteByKey("Coef_Info") + "1", "syntax error");
}

TEST_F(RegionQueryFileTest, RenamingTakesTheRectangleInTheOrderOfTheColumns) {
  store({20, 25, 30, 35});
  store({25, 20, 35, 30});
  ASSERT_EQ(host.engine.prepare_v2(renameByRectangle("Coef_Info").c_str(), -1), kOk);
  EXPECT_EQ(host.engine.bind_text(1, "New", 3, nullptr), kOk);
  EXPECT_EQ(host.engine.bind_int(2, 25), kOk);
  EXPECT_EQ(host.engine.bind_int(3, 20), kOk);
  EXPECT_EQ(host.engine.bind_int(4, 35), kOk);
  EXPECT_EQ(host.engine.bind_int(5, 30), kOk);
  EXPECT_EQ(host.engine.bind_int(6, 1), kOk);
  EXPECT_EQ(host.engine.step(), kStepDone);
  EXPECT_EQ(rows("select id, coeftablename from Coef_Info"), (Rows{{"1", "New"}, {"2", "Coef"}}));
}

}  // namespace tovrtest
