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

// By the library's own cipher, which gets a large blob in pieces that chain to one cipher text, and by a host's.
TEST_F(OperatorBaseTest, PayloadsAreFramedLittleEndianEncipheredAndComeBack) {
  for (IEncryption* service : std::initializer_list<IEncryption*>{&host.cipher, &host.encryption}) {
    serveEncryption(*service);
    Probe operators;
    for (const std::size_t size : {0U, 1U, 3U, 4U, 5U, 12U, 258U, 65531U, 65532U, 65533U, 131068U, 200001U}) {
      SCOPED_TRACE(size);
      const Bytes payload = size < 100 ? Bytes(size) : pattern(size, 1);  // zeros: only the prefix tells padding apart
      Bytes framed;
      for (int i = 0; i < 4; ++i) framed.push_back(static_cast<unsigned char>(size >> (8 * i)));
      framed.insert(framed.end(), payload.begin(), payload.end());
      Bytes stored;
      ASSERT_TRUE(operators.encryptData(payload.data(), static_cast<unsigned int>(size), stored));
      EXPECT_TRUE(stored == enciphered(framed));
      Bytes back = {9};
      EXPECT_TRUE(operators.decryptData(stored.data(), static_cast<unsigned int>(stored.size()), back));
      EXPECT_TRUE(back == payload);
    }
  }
}

TEST_F(OperatorBaseTest, WhatCannotBeAStoredPayloadIsRefusedUntouched) {
  Bytes flipped = enciphered({4, 0, 0, 0, 1, 2, 3, 4});
  flipped[0] ^= 1;
  Bytes out = {9};
  EXPECT_FALSE(decrypt({}, out));
  EXPECT_FALSE(decrypt({1, 2, 3}, out)) << "shorter than the prefix";
  EXPECT_FALSE(decrypt(enciphered({5, 0, 0, 0, 1, 2, 3, 4}), out)) << "the prefix says more than there is";
  EXPECT_FALSE(decrypt(enciphered({0xFC, 0xFF, 0xFF, 0xFF, 1}), out)) << "as much more as would wrap";
  EXPECT_FALSE(decrypt(flipped, out));
  EXPECT_FALSE(probe.decryptData(nullptr, 8, out));
  EXPECT_FALSE(probe.encryptData(nullptr, 8, out));
  EXPECT_EQ(out, Bytes{9});
}

TEST_F(OperatorBaseTest, SequenceIsTheLastKeyAndLeftAloneWhereNoneWasIssued) {
  createFile(kByRectangle);
  int sequence = 77;
  EXPECT_EQ(probe.getSequence("Coef", &sequence), kOk);
  EXPECT_EQ(sequence, 77);
  EXPECT_EQ(lastStatement(), " Select seq From sqlite_sequence Where name = 'Coef'");
  run("update sqlite_sequence set seq = null where name = 'DB_Info'");
  EXPECT_EQ(probe.getSequence("DB_Info", &sequence), kOk);
  EXPECT_EQ(sequence, 77);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(probe.getSequence("'", &sequence), SQLITE_ERROR); }),
            "unrecognized token: \"'''\"");
  EXPECT_EQ(sequence, 77);
  run("update sqlite_sequence set seq = 41 where name = 'DB_Info'");
  EXPECT_EQ(probe.getSequence("DB_Info", &sequence), kOk);
  EXPECT_EQ(sequence, 41);
}

TEST_F(OperatorBaseTest, HostileErrorTextsArePrintedAndNeverReadArguments) {
  const std::pair<const char*, const char*> cases[] = {{"%n", "%n"},   {"%", "%"},        {"100%", "100%"},
                                                       {"%%", "%"},    {"%%%", "%%"},     {"%%%%", "%%"},
                                                       {"% d", "% d"}, {"%s%%n", "%s%n"}, {nullptr, ""}};
  for (const auto& [text, printed] : cases) {
    EXPECT_EQ(printedBy([text = text] { printErrorText(text); }), printed);
  }
}

TEST_F(OperatorBaseTest, AnErrorTextOfTheFileIsPrintedLikeAnyOther) {
  createFile(kByRectangle);
  run("create trigger t before insert on Coef begin select raise(abort, '%n %s %% %d'); end");
  CoefData record;
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(probe.insertCoef(&record), SQLITE_CONSTRAINT); }), "%n %s % %d");
  run("drop trigger t");
  EXPECT_EQ(probe.insertCoef(&record), kOk);
}

TEST_F(OperatorBaseTest, TablesAreFreedBeforeTheErrorTextIsAskedFor) {
  createFile(0);
  host.connection.tableCalls.clear();
  int sequence = 0;
  EXPECT_EQ(probe.getSequence("'", &sequence), SQLITE_ERROR);
  const std::vector<std::string> failed = {"get_table", "free_table", "errMsg"};
  EXPECT_EQ(host.connection.tableCalls, failed);
  run("drop table DataInfo");
  host.connection.tableCalls.clear();
  EXPECT_EQ(readData(5).code, SQLITE_ERROR);
  EXPECT_EQ(host.connection.tableCalls, failed);
}

}  // namespace tovrtest
