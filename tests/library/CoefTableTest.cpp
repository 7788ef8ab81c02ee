// The operator of coefficient blocks and their placement.
#include "tables/CoefDataTableOperate.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

class CoefTableTest : public ScreenFileTest {
 protected:
  // A placement of the block 1, which is stored, on the screen 1.
  CoefData placement() {
    Bytes cells = {1, 2, 3};
    CoefData record = coef({11, 12, 13, 14}, cells, 3);
    EXPECT_EQ(table.insertCoef(&record), kOk);
    record.coefBuffer = {};
    record.screenid = record.coefid = 1;
    record.coeftablename = "not written";
    record.areaIndex = 70;
    record.areaid = 80;
    record.multilayersize = 5;
    record.multilayerlist = {1, -2, 0x01020304};
    return record;
  }
  CoefData firstListed() {
    CoefDataResult result;
    result.coefs.resize(3);
    EXPECT_EQ(manager->queryData(&result), kOk);
    EXPECT_EQ(result.coefs.size(), 1U) << "a list does not keep what it held";
    return result.coefs.at(0);
  }

  CoefDataTableOperate table;
};

TEST_F(CoefTableTest, APlacementIsWrittenFieldByField) {
  CoefData record = placement();
  ASSERT_EQ(table.insert(&record), kOk);
  EXPECT_EQ(lastStatement(),
            "insert into Coef_Info(screenid, coefid, coeftablename, coeftype, areaid, top, left, bottom,              "
            "right, multilayersize, multilayerlist, ctime, mtime) values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
            "datetime('now','localtime'), datetime('now','localtime'))");
  EXPECT_EQ(rows("select screenid, coefid, coeftablename, coeftype, areaid, left, top, right, bottom, multilayersize, "
                 "hex(multilayerlist) from Coef_Info"),
            (Rows{{"1", "1", "Coef", "1", "80", "11", "12", "13", "14", "5", "01000000FEFFFFFF04030201"}}));
}

TEST_F(CoefTableTest, APlacementReadBackHasItsAreaNumberInTheIndex) {
  CoefData record = placement();
  run("insert into Coef(data, databitwidth, version) values(x'00', 1, '')");
  record.coefid = 2;
  ASSERT_EQ(table.insert(&record), kOk);
  run("update Coef_Info set id = 3");
  const CoefData read = firstListed();
  EXPECT_EQ(read.id, 3);
  EXPECT_EQ(read.screenid, 1);
  EXPECT_EQ(read.coefid, 2);
  EXPECT_EQ(read.coeftablename, "Coef");
  EXPECT_EQ(read.coeftype, 1);
  EXPECT_EQ(read.areaIndex, 80);
  EXPECT_EQ(read.areaid, -1);
  EXPECT_EQ(rectOf(read), (Rect{11, 12, 13, 14}));
  EXPECT_EQ(read.multilayersize, 5);
  EXPECT_EQ(read.multilayerlist, record.multilayerlist);
}

TEST_F(CoefTableTest, AnUpdateRewritesThePlacementAndTheTimeOfItsLastChange) {
  CoefData record = placement();
  ASSERT_EQ(table.insert(&record), kOk);
  run("update Coef_Info set mtime = 'old', ctime = 'old'");
  CoefData read = firstListed();
  read.multilayersize = 0;
  EXPECT_EQ(table.update(&read), kOk);
  EXPECT_EQ(lastStatement(),
            "update Coef_Info set screenid=?,coefid=?,coeftablename=?,coeftype=?,areaid=?,top=?,left=?,bottom=?,right=?"
            ",multilayersize=?,multilayerlist=?,mtime=datetime('now','localtime') where id=1");
  EXPECT_EQ(rows("select areaid, left, top, right, bottom, multilayersize, hex(multilayerlist), ctime from Coef_Info"),
            (Rows{{"-1", "11", "12", "13", "14", "0", "01000000FEFFFFFF04030201", "old"}}))
      << "written back as it was read, it loses its area number";
  EXPECT_NE(value("select mtime from Coef_Info"), "old");
}

// Points: prepare, then eleven binds, which are all made.
TEST_F(CoefTableTest, Insert_BindFails) {
  CoefData record = placement();
  for (int point = 2; point <= 12; ++point) {
    host.points.arm(point);
    EXPECT_EQ(table.insert(&record), FaultyConnection::kFault);
    EXPECT_EQ(host.points.passed, 12) << point;
    host.points.disarm();
  }
  EXPECT_EQ(countOf("Coef_Info"), 0);
}

TEST_F(CoefTableTest, WithoutLayersTheListIsNullAndAnUnknownScreenIsRefused) {
  CoefData record = placement();
  record.multilayerlist.clear();
  EXPECT_EQ(table.insert(&record), kOk);
  EXPECT_EQ(value("select multilayerlist from Coef_Info"), "null");
  record.screenid = 9;
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(table.insert(&record), SQLITE_CONSTRAINT); }), "FOREIGN KEY constraint failed");
}

TEST_F(CoefTableTest, LayerListsOfOtherProgramsAreTakenInWholeElements) {
  run("insert into Coef(data, databitwidth, version) values(x'00', 1, '')");
  const struct {
    const char* sizeAndList;
    std::size_t elements;
  } cases[] = {{"0, zeroblob(12)", 0}, {"3, zeroblob(12)", 3}, {"5, zeroblob(12)", 3}, {"2, x''", 0},
               {"2, zeroblob(7)", 1},  {"1, zeroblob(3)", 0},  {"2, null", 0},         {"null, x'01020304'", 0}};
  for (const auto& c : cases) {
    run("delete from Coef_Info; insert into Coef_Info(screenid, coefid, coeftablename, coeftype, areaid, top, left, "
        "bottom, right, multilayersize, multilayerlist) values(1, 1, '', 1, 1, 0, 0, 0, 0, " +
        std::string(c.sizeAndList) + ")");
    EXPECT_EQ(firstListed().multilayerlist.size(), c.elements) << c.sizeAndList;
  }
}

TEST_F(CoefTableTest, ABlockIsRewrittenWithoutItsVersionAndAMissingOneLeavesTheBufferAlone) {
  Bytes cells = pattern(21, 1);
  CoefData record = coef({0, 0, 1, 1}, cells, 7);
  record.version = "v1";
  ASSERT_EQ(table.insertCoef(&record), kOk);
  EXPECT_EQ(rows("select id, length(data), databitwidth, version from Coef"), (Rows{{"1", "32", "7", "v1"}}));
  record.coefBuffer = {2, cells.data(), 5};
  record.version = "not stored";
  EXPECT_EQ(table.updateCoef(1, &record), kOk);
  EXPECT_EQ(rows("select length(data), databitwidth, version from Coef"), (Rows{{"16", "2", "v1"}}));
  CoefBuffer read;
  ASSERT_EQ(table.selectCoef(1, &read), kOk);
  const std::unique_ptr<unsigned char[]> owner(read.data);
  EXPECT_EQ(Bytes(read.data, read.data + read.datasize), Bytes(cells.begin(), cells.begin() + 5));
  CoefBuffer missing{77, nullptr, 66};
  EXPECT_EQ(table.selectCoef(-4, &missing), kOk);
  EXPECT_EQ(missing.databitwidth, 77);
  EXPECT_EQ(missing.datasize, 66);
}

TEST_F(CoefTableTest, ABufferWithoutBytesOrWithANegativeSizeIsNotStored) {
  CoefData record = placement();
  unsigned char byte = 1;
  for (const CoefBuffer& buffer : {CoefBuffer{1, nullptr, 4}, CoefBuffer{1, &byte, -1}}) {
    record.coefBuffer = buffer;
    EXPECT_EQ(table.insertCoef(&record), kCipherFailed) << buffer.datasize << " bytes";
    EXPECT_EQ(table.updateCoef(1, &record), kCipherFailed) << buffer.datasize << " bytes";
  }
  EXPECT_EQ(rows("select databitwidth from Coef"), (Rows{{"3"}}));
}

TEST_F(CoefTableTest, ClearingTakesPlacementsBeforeBlocksAndRestartsTheKeys) {
  CoefData record = placement();
  ASSERT_EQ(table.insert(&record), kOk);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(manager->deleteData(&record), kOk); }),
            "DataTableOperateBase::exec sql :delete from Coef_Info;  UPDATE sqlite_sequence SET seq = 0 WHERE "
            "name='Coef_Info';\nDataTableOperateBase::exec sql :delete from Coef;  UPDATE sqlite_sequence SET seq = 0 "
            "WHERE name='Coef';\n");
  EXPECT_EQ(countOf("Coef_Info"), 0);
  EXPECT_EQ(manager->insertData(&record), kOk);
  EXPECT_EQ(rows("select Coef_Info.id, Coef.id from Coef_Info, Coef"), (Rows{{"1", "1"}}));
}

}  // namespace tovrtest
