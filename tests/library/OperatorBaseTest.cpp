// What all table operators share: the stored form of payloads, key sequences, and what reaches standard output.
#include "crypto/DES.h"
#include "storage/DataTableOperateBase.h"
#include "storage/Log.h"
#include "tables/CoefDataTableOperate.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

struct Probe final : CoefDataTableOperate {
  using DataTableOperateBase::decryptData;
  using DataTableOperateBase::encryptData;
};

class OperatorBaseTest : public DatabaseTest {
 protected:
  static Bytes enciphered(const Bytes& framed) {
    Bytes out;
    EXPECT_TRUE(DES().encrypt("kelptarn", "kelptarn", framed, out));
    return out;
  }
  bool decrypt(const Bytes& stored, Bytes& out) {
    return probe.decryptData(stored.data(), static_cast<unsigned int>(stored.size()), out);
  }
  Probe probe;
};

TEST_F(OperatorBaseTest, PayloadsAreFramedLittleEndianAndEnciphered) {
  for (const std::size_t size : {0U, 1U, 3U, 4U, 5U, 12U, 258U, 65531U, 65532U, 65533U, 200000U}) {
    const Bytes payload =
        size < 100 ? Bytes(size) : pattern(size, 1);  // zeros: only the prefix tells them from padding
    Bytes framed;
    for (int i = 0; i < 4; ++i) framed.push_back(static_cast<unsigned char>(size >> (8 * i)));
    framed.insert(framed.end(), payload.begin(), payload.end());
    Bytes stored;
    Bytes back = {9};
    ASSERT_TRUE(probe.encryptData(payload.data(), static_cast<unsigned int>(size), stored));
    EXPECT_TRUE(stored == enciphered(framed)) << size;
    EXPECT_TRUE(decrypt(stored, back) && back == payload) << size;
  }
}

TEST_F(OperatorBaseTest, WhatCannotBeAStoredPayloadIsRefusedUntouched) {
  Bytes flipped = enciphered({4, 0, 0, 0, 1, 2, 3, 4});
  flipped[0] ^= 1;
  Bytes out = {9};
  for (const Bytes& stored : {Bytes{}, Bytes{1, 2, 3},                  // shorter than the prefix
                              enciphered({5, 0, 0, 0, 1, 2, 3, 4}),     // the prefix says more than there is
                              enciphered({0xFC, 0xFF, 0xFF, 0xFF, 1}),  // as much more as would wrap
                              flipped}) {
    EXPECT_FALSE(decrypt(stored, out)) << stored.size();
  }
  EXPECT_FALSE(probe.decryptData(nullptr, 8, out) || probe.encryptData(nullptr, 8, out));
  EXPECT_EQ(out, Bytes{9});
}

TEST_F(OperatorBaseTest, SequenceIsLeftAloneWhereNoKeyWasIssued) {
  createFile(0);
  int code = 0;
  const auto sequenceOf = [&](const char* name) {
    int sequence = 77;
    code = probe.getSequence(name, &sequence);
    return sequence;
  };
  EXPECT_EQ(sequenceOf("Coef"), 77);
  EXPECT_EQ(host.connection.statements.back(), " Select seq From sqlite_sequence Where name = 'Coef'");
  run("update sqlite_sequence set seq = null where name = 'DB_Info'");
  EXPECT_EQ(sequenceOf("DB_Info"), 77);
  run("update sqlite_sequence set seq = 41 where name = 'DB_Info'");
  EXPECT_EQ(sequenceOf("DB_Info"), 41);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(sequenceOf("'"), 77); }), "unrecognized token: \"'''\"");
  EXPECT_EQ(code, 1);
}

TEST_F(OperatorBaseTest, HostileErrorTextsArePrintedAndNeverReadArguments) {
  const auto printAll = [] {
    for (const char* text : {"%n", "%", "100%", "%%", "%%%", "%%%%", "% d", "%s%%n"}) {
      printErrorText(text);
      printErrorText("\n");
    }
    printErrorText(nullptr);
  };
  EXPECT_EQ(printedBy(printAll), "%n\n%\n100%\n%\n%%\n%%\n% d\n%s%n\n");
  createFile(0);
  run("create trigger t before insert on Coef begin select raise(abort, '%n %s %% %d'); end");
  CoefData record;
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(probe.insertCoef(&record), 19); }), "%n %s % %d");
  run("drop trigger t");
  EXPECT_EQ(probe.insertCoef(&record), 0);
}

TEST_F(OperatorBaseTest, TablesAreFreedBeforeTheErrorTextIsAskedFor) {
  createFile(0);
  host.connection.tableCalls.clear();
  int sequence = 0;
  EXPECT_EQ(probe.getSequence("'", &sequence), 1);
  const std::vector<std::string> failed = {"get_table", "free_table", "errMsg"};
  EXPECT_EQ(host.connection.tableCalls, failed);
  run("drop table DataInfo");
  host.connection.tableCalls.clear();
  EXPECT_EQ(readData(5).first, 1);
  EXPECT_EQ(host.connection.tableCalls, failed);
}

}  // namespace tovrtest
