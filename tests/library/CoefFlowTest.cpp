// Coefficient blocks through the manager: how they find their screen and area in both types of file.
#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr Rect kScreen{10, 20, 30, 40};
constexpr Rect kWide{0, 0, 99, 99};
constexpr Rect kBlock{1, 2, 3, 4};
constexpr Rect kElsewhere{50, 60, 51, 61};
constexpr int kNoArea = -1;

// `rect` with each of its edges moved by one in turn: outwards, or inwards.
std::vector<Rect> moved(const Rect& r, int by) {
  return {{r.left - by, r.top, r.right, r.bottom},
          {r.left, r.top - by, r.right, r.bottom},
          {r.left, r.top, r.right + by, r.bottom},
          {r.left, r.top, r.right, r.bottom + by}};
}

class CoefFlowTest : public DatabaseTest {
 protected:
  // A record over `cells`, which it fills with bytes that no other block has.
  CoefData block(const Rect& rect, const std::string& screen = "", int areaid = kNoArea, int type = 1) {
    const int size = (rect.right - rect.left + 1) * (rect.bottom - rect.top + 1) * 2;
    cells = pattern(static_cast<std::size_t>(size), ++seed_);
    CoefData record = coef(rect, cells, 2, screen);
    record.areaid = areaid;
    record.coeftype = type;
    return record;
  }
  // A file of type 0 with a screen, and a block on it.
  void givenScreen(const Rect& screen) {
    createFile(kByRectangle);
    ASSERT_EQ(addScreen("", screen), kOk);
  }
  void givenBlock(const Rect& screen, const Rect& rect) {
    givenScreen(screen);
    ASSERT_EQ(insert(block(rect)), kOk);
  }
  int insert(CoefData record) { return manager->insertData(&record); }
  int update(CoefData record) { return manager->updateData(&record); }

  // `id` is that of the placement: 0 where the library has made a new one, whose key it does not tell.
  static void expectKeys(const CoefData& record, int id, int screenid, int coefid) {
    EXPECT_EQ(record.id, id);
    EXPECT_EQ(record.screenid, screenid);
    EXPECT_EQ(record.coefid, coefid);
  }

  void expectRefused(int code, const Rect& rect, const std::string& screen, int type) {
    CoefData record = coef(rect, cells, 1, screen);
    record.coeftype = type;
    host.connection.statements.clear();
    EXPECT_EQ(manager->queryData(&record), code) << testing::PrintToString(rect) << screen;
    EXPECT_EQ(manager->insertData(&record), code) << testing::PrintToString(rect) << screen;
    EXPECT_EQ(manager->updateData(&record), code) << testing::PrintToString(rect) << screen;
    EXPECT_EQ(host.connection.statements, std::vector<std::string>(3, "select dbtype from DB_Info"));
  }

  Bytes cells;

 private:
  unsigned int seed_ = 0;
};

TEST_F(CoefFlowTest, RecordsThatSayTooLittleAreRefusedBeforeAnyTableOfTheirsIsRead) {
  createFileWithoutType();
  expectRefused(kTypeNotGiven, kBlock, "wall", 1);
  for (const int dbtype : {kByRectangle, kByName}) {
    SCOPED_TRACE(dbtype);
    run("delete from DB_Info");
    insertInfo(dbtype);
    for (const Rect& rect : {Rect{-1, 1, 1, 1}, Rect{1, -1, 1, 1}, Rect{1, 1, -1, 1}, Rect{1, 1, 1, -1}}) {
      expectRefused(kRectangleRefused, rect, "", kDataTypeNotGiven);
    }
    expectRefused(dbtype == kByName ? kScreenNameMissing : kTypeNotGiven, kBlock, "", kDataTypeNotGiven);
    expectRefused(kTypeNotGiven, kBlock, "wall", kDataTypeNotGiven);
  }
}

TEST_F(CoefFlowTest, ByRectangleABlockGoesToTheFirstScreenThatHoldsIt) {
  createFile(kByRectangle);
  EXPECT_EQ(insert(block(kScreen)), kNoScreenForRectangle);
  ASSERT_EQ(addScreen("too small", {0, 0, 5, 5}), kOk);
  ASSERT_EQ(addScreen("edges touch", kScreen), kOk);
  ASSERT_EQ(addScreen("holds it too", kWide), kOk);
  CoefData record = block(kScreen);
  EXPECT_EQ(manager->insertData(&record), kOk);
  expectKeys(record, 0, 2, 1);
  EXPECT_EQ(cellsAt(kScreen), cells);
  run("update Coef_Info set screenid = 3");
  EXPECT_EQ(query(kScreen).code, kNoMatchingArea) << "other screens that hold it are not looked at";
}

TEST_F(CoefFlowTest, ByRectangleABlockThatReachesOutOfEveryScreenIsRefused) {
  givenBlock(kScreen, kScreen);
  for (const Rect& poking : moved(kScreen, 1)) {
    EXPECT_EQ(insert(block(poking)), kNoScreenForRectangle) << testing::PrintToString(poking);
    EXPECT_EQ(update(block(poking)), kNoScreenForRectangle) << testing::PrintToString(poking);
    EXPECT_EQ(query(poking).code, kNoMatchingArea) << testing::PrintToString(poking);
  }
  EXPECT_EQ(countOf("Coef"), 1);
}

TEST_F(CoefFlowTest, ByRectangleABlockOnNoScreenIsLookedForAsThatOfScreenZero) {
  givenBlock(kScreen, kScreen);
  run("PRAGMA foreign_keys = OFF; delete from Screen_Info");
  EXPECT_EQ(query(kScreen).code, kNoMatchingArea);
  run("update Coef_Info set screenid = 0");
  EXPECT_EQ(cellsAt(kScreen), cells);
}

TEST_F(CoefFlowTest, ByRectangleAnyDifferenceMakesAnotherArea) {
  givenBlock(kWide, kBlock);
  CoefData same = block(kBlock);
  EXPECT_EQ(manager->insertData(&same), kOk);
  expectKeys(same, 1, 1, 1);
  EXPECT_EQ(cellsAt(kBlock), cells) << "the same area is rewritten in place";
  for (const Rect& other : moved(kBlock, 1)) EXPECT_EQ(insert(block(other)), kOk) << testing::PrintToString(other);
  EXPECT_EQ(countOf("Coef_Info"), 5);
  EXPECT_EQ(insert(block(kBlock, "", kNoArea, 2)), kOk);
  EXPECT_EQ(countOf("Coef_Info"), 6);
  EXPECT_EQ(insert(block(kBlock, "", 3)), kOk);
  EXPECT_EQ(insert(block(kBlock, "", 3)), kOk);  // an area with a number is never found again
  EXPECT_EQ(number("select count(*) from Coef_Info where areaid = 3"), 2);
  EXPECT_EQ(countOf("Coef"), 8);
}

TEST_F(CoefFlowTest, ByRectangleAnUpdateWantsTheScreensExactRectangleAndAnAreaOfTheType) {
  givenScreen(kScreen);
  EXPECT_EQ(update(block(kScreen)), kNoMatchingArea);
  ASSERT_EQ(insert(block(kScreen)), kOk);
  EXPECT_EQ(update(block(kScreen, "", kNoArea, 2)), kNoMatchingArea);
  EXPECT_EQ(update(block(kScreen, "", 3)), kNoScreenForRectangle) << "screens have no area number";
  for (const Rect& inner : moved(kScreen, -1)) {
    EXPECT_EQ(update(block(inner)), kNoScreenForRectangle) << testing::PrintToString(inner);
  }
  CoefData changed = block(kScreen);
  EXPECT_EQ(manager->updateData(&changed), kOk);
  expectKeys(changed, 1, 1, 1);
  EXPECT_EQ(cellsAt(kScreen), cells);
  EXPECT_EQ(countOf("Coef"), 1);
}

TEST_F(CoefFlowTest, ByNameAnInsertMakesTheMissingScreen) {
  createFile(kByName);
  insertInfo(kByName);
  CoefData record = block(kBlock, "wall", 5);
  ASSERT_EQ(manager->insertData(&record), kOk);
  expectKeys(record, 0, 1, 1);
  EXPECT_EQ(rows("select id, screenname, dbid, left, top, right, bottom from Screen_Info"),
            (Rows{{"1", "wall", "2", "1", "2", "3", "4"}}))
      << "under the last description";
  EXPECT_EQ(rows("select screenid, coefid, coeftype, areaid, left, top, right, bottom from Coef_Info"),
            (Rows{{"1", "1", "1", "5", "1", "2", "3", "4"}}));
}

TEST_F(CoefFlowTest, ByNameAScreenHasOneAreaOfAType) {
  createFile(kByName);
  ASSERT_EQ(insert(block(kBlock, "wall", 5)), kOk);
  EXPECT_EQ(insert(block(kElsewhere, "wall")), kOk);
  EXPECT_EQ(cellsAt(kElsewhere, "wall"), cells);
  EXPECT_EQ(rows("select areaid, left from Coef_Info"), (Rows{{"-1", "50"}}));
  EXPECT_EQ(rectOf(screens()[0]), kBlock) << "the screen stays";
  EXPECT_EQ(insert(block(kElsewhere, "wall", kNoArea, 2)), kOk);
  EXPECT_EQ(countOf("Coef_Info"), 2);
  for (const char* name : {"Wall", "wall ", "all"}) EXPECT_EQ(insert(block(kBlock, name)), kOk) << name;
  EXPECT_EQ(countOf("Screen_Info"), 4) << "none of these names is the other";
}

TEST_F(CoefFlowTest, ByNameAnUpdateMovesTheScreenEvenWhereItFindsNoArea) {
  createFile(kByName);
  EXPECT_EQ(update(block(kScreen, "wall")), kNoSuchScreenName);
  EXPECT_EQ(query(kScreen, "wall").code, kNoSuchScreenName);
  ASSERT_EQ(addScreen("other", kWide), kOk);
  ASSERT_EQ(addScreen("wall", kWide), kOk);
  EXPECT_EQ(update(block(kBlock, "wall")), kNoMatchingArea);
  EXPECT_EQ(rectOf(screens()[1]), kBlock);
  ASSERT_EQ(insert(block(kBlock, "wall")), kOk);
  CoefData changed = block(kElsewhere, "wall");
  EXPECT_EQ(manager->updateData(&changed), kOk);
  expectKeys(changed, 1, 2, 1);
  EXPECT_EQ(cellsAt(kElsewhere, "wall"), cells);
  EXPECT_EQ(rows("select screenname, left from Screen_Info"), (Rows{{"other", "0"}, {"wall", "50"}}));
}

// Queries are the same for both types of file once the screen is found.
class CoefQueryTest : public CoefFlowTest, public testing::WithParamInterface<int> {
 protected:
  static constexpr Rect kStored{11, 21, 14, 23};

  std::string screen() const { return GetParam() == kByName ? "wall" : ""; }
};

INSTANTIATE_TEST_SUITE_P(DatabaseTypes, CoefQueryTest, testing::Values(kByRectangle, kByName));

TEST_P(CoefQueryTest, ARectangleIsCutOutOfTheBlockAndTheAreasIdentityFilledIn) {
  createFile(GetParam());
  ASSERT_EQ(addScreen("wall", kScreen), kOk);
  CoefData stored = block(kStored, screen(), 9);
  stored.multilayersize = 1;
  stored.multilayerlist = {42};
  ASSERT_EQ(insert(stored), kOk);
  EXPECT_EQ(cellsAt(kStored, screen()), cells);
  EXPECT_EQ(query(kStored, screen(), 2).code, kNoMatchingArea) << "another type";
  for (const Rect& poking : moved(kStored, 1)) {
    EXPECT_EQ(query(poking, screen()).code, kNoMatchingArea) << testing::PrintToString(poking);
  }
  const Rect window{13, 22, 13, 23};
  Bytes none;
  CoefData request = coef(window, none, 0, screen());
  request.areaid = 5;
  ASSERT_EQ(manager->queryData(&request), kOk);
  const std::unique_ptr<unsigned char[]> owner(request.coefBuffer.data);
  EXPECT_EQ(request.coefBuffer.databitwidth, 2);
  ASSERT_EQ(request.coefBuffer.datasize, 4);
  EXPECT_EQ(Bytes(owner.get(), owner.get() + 4), (Bytes{cells[12], cells[13], cells[20], cells[21]}));
  expectKeys(request, 1, 1, 1);
  EXPECT_EQ(request.coeftablename, "Coef");
  EXPECT_EQ(request.areaIndex, 9) << "the stored area number";
  EXPECT_EQ(request.multilayersize, 1);
  EXPECT_EQ(request.multilayerlist, std::vector<int>{42});
  EXPECT_EQ(request.coeftype, 1) << "the request's";
  EXPECT_EQ(request.areaid, 5) << "the request's";
  EXPECT_EQ(rectOf(request), window) << "the request's";
}

constexpr int kThrown = -1;

class FailedCoefQueryTest : public CoefFlowTest {
 protected:
  // A query that is to fail, and to leave the record as it was. Answers its code.
  int queryUnchanged(const Rect& rect) {
    unsigned char mine = 7;
    CoefData request = coef(rect, cells, 3);
    request.id = request.screenid = request.coefid = request.areaIndex = 66;
    request.coefBuffer = {3, &mine, 1};
    int code = kThrown;
    try {
      code = manager->queryData(&request);
    } catch (const std::bad_alloc&) {
    }
    expectKeys(request, 66, 66, 66);
    EXPECT_EQ(request.areaIndex, 66);
    EXPECT_EQ(request.coeftablename, "");
    EXPECT_EQ(request.coefBuffer.data, &mine);
    EXPECT_EQ(request.coefBuffer.datasize, 1);
    return code;
  }
};

TEST_F(FailedCoefQueryTest, LeavesTheRecordAsItWasAndDoesNotHinderTheNextCall) {
  givenBlock(kWide, {0, 0, 3, 3});
  EXPECT_EQ(queryUnchanged({0, 0, 4, 4}), kNoMatchingArea);
  EXPECT_EQ(queryUnchanged({3, 0, 1, 0}), kThrown) << "inverted: a negative size";
  run("update Coef set databitwidth = 3");
  EXPECT_EQ(queryUnchanged({0, 0, 3, 3}), kBlockTooSmall);
  CoefData few = block({0, 0, 3, 3});
  few.coefBuffer.datasize = 5;
  EXPECT_EQ(insert(few), kOk) << "sizes are the host's to check";
  EXPECT_EQ(queryUnchanged({0, 0, 3, 3}), kBlockTooSmall);
  for (const char* blob : {"x'0102030405060708'", "x'01'"}) {
    run("update Coef set data = " + std::string(blob));
    EXPECT_EQ(queryUnchanged({0, 0, 0, 0}), kCipherFailed) << blob;
  }
  EXPECT_EQ(insert(block({0, 0, 3, 3})), kOk) << "the statement that was left behind is replaced";
  EXPECT_EQ(cellsAt({0, 0, 3, 3}), cells);
}

TEST_F(CoefFlowTest, RectanglesWithoutCellsAreReadAllTheSame) {
  givenBlock({-9, 0, 9, 9}, {-3, 0, 3, 3});
  EXPECT_EQ(cellsAt({2, 0, 1, 3}), Bytes{}) << "inverted by one cell";
  EXPECT_EQ(cellsAt({0, 0, 1, 0}), Bytes(4, 0)) << "of an area that reaches from negative to positive";
  run("PRAGMA foreign_keys = OFF; delete from Coef");
  EXPECT_EQ(cellsAt({0, 0, 0, 0}), Bytes{}) << "without the block's row, cells have no bytes";
}

}  // namespace tovrtest
