// The region statements: their whole texts, and which of them the engine refuses.
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

class RegionQueryFileTest : public ScreenFileTest {
 protected:
  void expectError(const std::string& sql, const std::string& text) {
    EXPECT_EQ(host.engine.prepare_v2(sql.c_str(), -1), SQLITE_ERROR) << sql;
    EXPECT_NE(std::string(host.engine.errMsg()).find(text), std::string::npos) << sql << ": " << host.engine.errMsg();
  }
};

TEST_F(RegionQueryFileTest, WhatAsksForACabinetIsRefusedAsThereIsNoSuchColumn) {
  for (const std::string& sql : {cornerQuery("Coef_Info", 0, 0, 1, 1, 1, "A"), areaQuery("Coef_Info", 1, 1, "A"),
                                 typeQuery("Coef_Info", 1, "A"), cabinetList(), cabinetRectangles("A")}) {
    expectError(sql, "no such column: cabinetid");
  }
}

TEST_F(RegionQueryFileTest, DeletionsAreNotValidSql) {
  expectError(deleteByRectangle("Coef_Info"), "syntax error");
  expectError(deleteByKey("Coef_Info") + "1", "syntax error");
}

}  // namespace tovrtest
