// Coefficient records through the manager: how they find their screen and area in both types of file.
#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr Rect kScreen{10, 20, 30, 40};

class CoefFlowTest : public DatabaseTest {
 protected:
  // A record over `cells`, filled with bytes that no other block has.
  CoefData block(const Rect& rect, const std::string& screen = "", int areaid = -1, int type = 1) {
    const int size = (rect.right - rect.left + 1) * (rect.bottom - rect.top + 1) * 2;
    cells = pattern(static_cast<std::size_t>(size), ++seed_);
    CoefData record = coef(rect, cells, 2, screen);
    record.areaid = areaid;
    record.coeftype = type;
    return record;
  }
  int insert(CoefData record) { return manager->insertData(&record); }
  int update(CoefData record) { return manager->updateData(&record); }
  std::string counts() {
    return rows("select (select count(*) from Screen_Info), (select count(*) from Coef), count(*) from Coef_Info");
  }
  std::string placements() {
    return rows("select id, screenid, coefid, coeftype, areaid, left, top, right, bottom from Coef_Info");
  }
  std::string screens() { return rows("select id, dbid, screenname, left, top, right, bottom from Screen_Info"); }

  Bytes cells;

 private:
  unsigned int seed_ = 0;
};

TEST_F(CoefFlowTest, RecordsThatSayTooLittleAreRefusedBeforeAnyTableIsRead) {
  struct {
    Rect rect;
    const char* screen;
    int type;
    int expected[3];
  } const cases[] = {{{-1, 1, 1, 1}, "", 16, {4109, 4109, 4111}}, {{1, -1, 1, 1}, "", 16, {4109, 4109, 4111}},
                     {{1, 1, -1, 1}, "s", 1, {4109, 4109, 4111}}, {{1, 1, 1, -1}, "s", 1, {4109, 4109, 4111}},
                     {{1, 1, 1, 1}, "", 16, {4111, 4110, 4111}},  {{1, 1, 1, 1}, "s", 16, {4111, 4111, 4111}}};
  createFile(2);
  for (const int dbtype : {2, 0, 1}) {
    if (dbtype != 2) insertInfo(dbtype);
    for (const auto& c : cases) {
      for (const auto operation : {&IDBManager::queryData, &IDBManager::insertData, &IDBManager::updateData}) {
        CoefData record = coef(c.rect, cells, 1, c.screen);
        record.coeftype = c.type;
        EXPECT_EQ((manager.get()->*operation)(&record), c.expected[dbtype]) << dbtype << c.screen;
        EXPECT_EQ(host.connection.statements.back(), "select dbtype from DB_Info");
      }
    }
    run("delete from DB_Info");
  }
}

TEST_F(CoefFlowTest, ByRectangleTheFirstScreenThatHoldsTheRecordIsChosenEdgesIncluded) {
  createFile(0);
  EXPECT_EQ(insert(block(kScreen)), 4116);
  for (const Rect& rect : {Rect{0, 0, 5, 5}, kScreen, Rect{0, 0, 99, 99}}) ASSERT_EQ(addScreen("", rect), 0);
  CoefData record = block(kScreen);
  EXPECT_EQ(manager->insertData(&record), 0);
  EXPECT_EQ(fieldsOf(record), "0 2 1 1 0 -1 10 20 30 40 0 ");
  run("update Coef_Info set screenid = 3");
  EXPECT_EQ(read(kScreen).first, 4113);  // only the first screen is looked at
  run("update Coef_Info set screenid = 2; delete from Screen_Info where id = 3");
  EXPECT_EQ(read(kScreen), (Read{0, cells}));
  const Bytes kept = cells;
  for (const Rect& poking : {Rect{9, 20, 30, 40}, Rect{10, 19, 30, 40}, Rect{10, 20, 31, 40}, Rect{10, 20, 30, 41}}) {
    EXPECT_EQ(insert(block(poking)), 4116);
    EXPECT_EQ(update(block(poking)), 4116);
    EXPECT_EQ(read(poking).first, 4113);
  }
  EXPECT_EQ(placements() + counts(), "1|2|1|1|-1|10|20|30|40\n2|1|1\n");
  run("PRAGMA foreign_keys = OFF; delete from Screen_Info where id = 2; update Coef_Info set screenid = 1");
  EXPECT_EQ(read(kScreen).first, 4113);  // no screen holds it: looked for is an area of screen 0
  run("update Coef_Info set screenid = 0");
  EXPECT_EQ(read(kScreen), (Read{0, kept}));
}

TEST_F(CoefFlowTest, ByRectangleTheSameAreaIsRewrittenInPlaceAndAnyDifferenceAddsOne) {
  createFile(0);
  ASSERT_EQ(addScreen("", {0, 0, 99, 99}), 0);
  ASSERT_EQ(insert(block({1, 2, 3, 4})), 0);
  CoefData again = block({1, 2, 3, 4});
  EXPECT_EQ(manager->insertData(&again), 0);
  EXPECT_EQ(fieldsOf(again), "1 1 1 1 0 -1 1 2 3 4 0 ");
  EXPECT_EQ(read({1, 2, 3, 4}), (Read{0, cells}));
  EXPECT_EQ(counts(), "1|1|1\n");
  struct {
    Rect rect;
    int areaid;
    int type;
  } const others[] = {{{1, 2, 3, 4}, -1, 2}, {{0, 2, 3, 4}, -1, 1}, {{1, 1, 3, 4}, -1, 1}, {{1, 2, 2, 4}, -1, 1},
                      {{1, 2, 3, 3}, -1, 1}, {{1, 2, 3, 4}, 3, 1},  {{1, 2, 3, 4}, 3, 1}};  // 3 is never found again
  for (const auto& other : others) EXPECT_EQ(insert(block(other.rect, "", other.areaid, other.type)), 0);
  EXPECT_EQ(rows("select count(*) from Coef_Info where areaid = 3 and coeftype = 1"), "2\n");
  EXPECT_EQ(counts(), "1|8|8\n");
}

TEST_F(CoefFlowTest, ByRectangleAnUpdateWantsTheScreensExactRectangleAndKeepsTheKeys) {
  createFile(0);
  ASSERT_EQ(addScreen("", kScreen), 0);
  EXPECT_EQ(update(block(kScreen)), 4113);
  ASSERT_EQ(insert(block(kScreen)), 0);
  EXPECT_EQ(update(block(kScreen, "", -1, 2)), 4113);
  EXPECT_EQ(update(block(kScreen, "", 3)), 4116);  // a read screen carries no area number
  for (const Rect& inner : {Rect{11, 20, 30, 40}, Rect{10, 21, 30, 40}, Rect{10, 20, 29, 40}, Rect{10, 20, 30, 39}}) {
    EXPECT_EQ(update(block(inner)), 4116);
  }
  CoefData changed = block(kScreen);
  EXPECT_EQ(manager->updateData(&changed), 0);
  EXPECT_EQ(fieldsOf(changed), "1 1 1 1 0 -1 10 20 30 40 0 ");
  EXPECT_EQ(read(kScreen), (Read{0, cells}));
  EXPECT_EQ(counts(), "1|1|1\n");
}

TEST_F(CoefFlowTest, ByNameAnInsertMakesTheMissingScreenAndRewritesWhateverAreaOfItsTypeThereIs) {
  createFile(1);
  insertInfo(1);
  host.connection.statements.clear();
  CoefData record = block({1, 2, 3, 4}, "wall", 5);
  ASSERT_EQ(manager->insertData(&record), 0);
  EXPECT_EQ(fieldsOf(record), "0 1 1 1 0 5 1 2 3 4 0 ");
  std::string order;
  for (const std::string& sql : host.connection.statements) {
    if (sql.rfind("insert into ", 0) == 0) order += sql.substr(12, 6) + " ";
  }
  EXPECT_EQ(order, "Screen Coef ( Coef_I ");
  EXPECT_EQ(screens(), "1|2|wall|1|2|3|4\n");
  EXPECT_EQ(placements(), "1|1|1|1|5|1|2|3|4\n");
  EXPECT_EQ(insert(block({50, 60, 51, 61}, "wall")), 0);
  EXPECT_EQ(placements(), "1|1|1|1|-1|50|60|51|61\n");
  EXPECT_EQ(read({50, 60, 51, 61}, "wall"), (Read{0, cells}));
  EXPECT_EQ(insert(block({50, 60, 51, 61}, "wall", -1, 2)), 0);
  EXPECT_EQ(counts(), "1|2|2\n");
  for (const char* name : {"Wall", "wall ", "all"})
    EXPECT_EQ(insert(block({0, 0, 1, 1}, name)), 0);  // none is the same
  EXPECT_EQ(counts(), "4|5|5\n");
}

TEST_F(CoefFlowTest, ByNameAnUpdateMovesTheScreenAndWantsAnAreaOfTheType) {
  createFile(1);
  EXPECT_EQ(update(block(kScreen, "wall")), 4112);
  ASSERT_EQ(addScreen("other", {0, 0, 1, 1}), 0);
  ASSERT_EQ(addScreen("wall", {0, 0, 1, 1}), 0);
  EXPECT_EQ(update(block({1, 2, 3, 4}, "wall")), 4113);  // after the screen was moved
  EXPECT_EQ(screens(), "1|1|other|0|0|1|1\n2|1|wall|1|2|3|4\n");
  ASSERT_EQ(insert(block({1, 2, 3, 4}, "wall")), 0);
  CoefData moved = block({5, 6, 7, 8}, "wall");
  EXPECT_EQ(manager->updateData(&moved), 0);
  EXPECT_EQ(fieldsOf(moved), "1 2 1 1 0 -1 5 6 7 8 0 ");
  EXPECT_EQ(screens() + placements(), "1|1|other|0|0|1|1\n2|1|wall|5|6|7|8\n1|2|1|1|-1|5|6|7|8\n");
  EXPECT_EQ(read({5, 6, 7, 8}, "wall"), (Read{0, cells}));
}

TEST_F(CoefFlowTest, QueriesCutTheRectangleOutAndFillInTheAreasIdentity) {
  createFile(2);
  for (const int dbtype : {0, 1}) {
    run("delete from Coef_Info; delete from Coef; delete from Screen_Info; delete from DB_Info; update sqlite_sequence "
        "set seq = 0");
    insertInfo(dbtype);
    const std::string name = dbtype == 1 ? "wall" : "";
    EXPECT_EQ(read(kScreen, "wall").first, dbtype == 1 ? 4112 : 4113);
    ASSERT_EQ(addScreen("wall", kScreen), 0);
    EXPECT_EQ(read(kScreen, "wall").first, 4113);
    CoefData record = block({11, 21, 14, 23}, name, 9);
    record.multilayersize = 1;
    record.multilayerlist = {42};
    ASSERT_EQ(insert(record), 0);
    EXPECT_EQ(read({11, 21, 14, 23}, name), (Read{0, cells}));
    for (const Rect& poking :
         {Rect{10, 21, 14, 23}, Rect{11, 20, 14, 23}, Rect{11, 21, 15, 23}, Rect{11, 21, 14, 24}}) {
      EXPECT_EQ(read(poking, name).first, 4113);
    }
    EXPECT_EQ(read({11, 21, 14, 23}, name, 2).first, 4113);
    Bytes none;
    CoefData request = coef({13, 22, 13, 23}, none, 0, name);
    request.areaid = 5;
    ASSERT_EQ(manager->queryData(&request), 0);
    const std::unique_ptr<unsigned char[]> owner(request.coefBuffer.data);
    EXPECT_EQ(fieldsOf(request), "1 1 1 1 9 5 13 22 13 23 1 Coef");
    EXPECT_EQ(request.multilayerlist, std::vector<int>{42});
    EXPECT_EQ(request.coefBuffer.datasize * 10 + request.coefBuffer.databitwidth, 42);
    EXPECT_EQ(Bytes(owner.get(), owner.get() + 4), (Bytes{cells[12], cells[13], cells[20], cells[21]}));
  }
}

TEST_F(CoefFlowTest, FailedQueriesLeaveTheRecordAsItWas) {
  createFile(0);
  ASSERT_EQ(addScreen("", {0, 0, 99, 99}), 0);
  const CoefData record = block({0, 0, 3, 3});
  ASSERT_EQ(insert(record), 0);
  const auto fails = [&](const Rect& rect) {
    unsigned char mine = 7;
    CoefData request = coef(rect, cells, 3);
    request.id = request.screenid = request.coefid = request.areaIndex = 66;
    request.coefBuffer = {3, &mine, 1};
    const std::string before = fieldsOf(request);
    int code = -1;
    try {
      code = manager->queryData(&request);
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(fieldsOf(request), before);
    EXPECT_TRUE(request.coefBuffer.data == &mine && request.coefBuffer.datasize == 1 &&
                request.coefBuffer.databitwidth == 3);
    return code;
  };
  EXPECT_EQ(fails({0, 0, 4, 4}), 4113);
  EXPECT_EQ(fails({3, 0, 1, 0}), -1);  // inverted: a negative size
  run("update Coef set databitwidth = 3");
  EXPECT_EQ(fails({0, 0, 3, 3}), 4110);
  for (const char* blob : {"x'0102030405060708'", "x'01'"}) {
    run(std::string("update Coef set data = ") + blob);
    EXPECT_EQ(fails({0, 0, 0, 0}), 4106);
  }
  ASSERT_EQ(insert(record), 0);  // the statement that was left behind is replaced
  EXPECT_EQ(read({0, 0, 3, 3}), (Read{0, cells}));
  run("PRAGMA foreign_keys = OFF; delete from Coef");
  EXPECT_EQ(read({0, 0, 0, 0}), (Read{0, {}}));  // no block: its cells have no bytes
}

TEST_F(CoefFlowTest, RectanglesWithoutCellsAreReadAllTheSame) {
  createFile(0);
  ASSERT_EQ(addScreen("", {-9, 0, 9, 9}), 0);
  ASSERT_EQ(insert(block({-3, 0, 3, 3})), 0);
  EXPECT_EQ(read({2, 0, 1, 3}), (Read{0, {}}));           // inverted by one cell
  EXPECT_EQ(read({0, 0, 1, 0}), (Read{0, Bytes(4, 0)}));  // of an area that reaches from negative to positive
}

}  // namespace tovrtest
