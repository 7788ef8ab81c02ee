// What all table operators share: key sequences, and what reaches standard output. That payloads are framed, enciphered
// and come back, and what is none is refused, fuzz/BlobFuzz shows.
#include "storage/Log.h"
#include "tables/CoefDataTableOperate.h"
#include "tables/LumChromaDataTableOperate.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

class OperatorBaseTest : public DatabaseTest {
 protected:
  using Calls = std::vector<std::string>;

  Calls tableCallsOf(const std::function<int()>& operation, int code) {
    host.connection.tableCalls.clear();
    EXPECT_EQ(operation(), code);
    return host.connection.tableCalls;
  }
  CoefDataTableOperate table;
  int sequence = 77;
};

TEST_F(OperatorBaseTest, SequenceIsTheLastKeyAndLeftAloneWhereNoneWasIssued) {
  createFile(kByRectangle);
  EXPECT_EQ(table.getSequence("Coef", &sequence), kOk);
  EXPECT_EQ(sequence, 77);
  EXPECT_EQ(lastStatement(), " Select seq From sqlite_sequence Where name = 'Coef'");
  run("update sqlite_sequence set seq = null where name = 'DB_Info'");
  EXPECT_EQ(table.getSequence("DB_Info", &sequence), kOk);
  EXPECT_EQ(sequence, 77);
  run("update sqlite_sequence set seq = 41 where name = 'DB_Info'");
  EXPECT_EQ(table.getSequence("DB_Info", &sequence), kOk);
  EXPECT_EQ(sequence, 41);
}

TEST_F(OperatorBaseTest, HostileErrorTextsArePrintedAndNeverReadArguments) {
  const std::pair<const char*, const char*> cases[] = {{"%n", "%n"},   {"%", "%"},        {"100%", "100%"},
                                                       {"%%", "%"},    {"%%%", "%%"},     {"%%%%", "%%"},
                                                       {"% d", "% d"}, {"%s%%n", "%s%n"}, {nullptr, ""}};
  for (const auto& [text, printed] : cases) {
    EXPECT_EQ(printedBy([given = text] { printErrorText(given); }), printed);
  }
  createFile(kByRectangle);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(table.getSequence("%%'", &sequence), SQLITE_ERROR); }),
            "unrecognized token: \"'%''\"");
}

TEST_F(OperatorBaseTest, TablesAreFreedBeforeAnythingElseIsAsked) {
  createFile(kByRectangle);
  LumChromaDataTableOperate measurements;
  LumChromaData record;
  const auto queryMeasurements = [&] { return measurements.query(&record); };
  EXPECT_EQ(tableCallsOf(queryMeasurements, kOk), (Calls{"get_table", "free_table", "prepare_v2"}));
  run("drop table DataInfo; drop table LumChromDataInfo");
  const Calls failed = {"get_table", "free_table", "errMsg"};
  EXPECT_EQ(tableCallsOf(queryMeasurements, SQLITE_ERROR), failed);
  EXPECT_EQ(tableCallsOf([&] { return readData(5).code; }, SQLITE_ERROR), failed);
  EXPECT_EQ(tableCallsOf([&] { return table.getSequence("'", &sequence); }, SQLITE_ERROR), failed);
}

}  // namespace tovrtest
