// The interfaces called as hosts call them: by slot number, on the objects that the loaded plug-in made.
#include "host/PluginHost.h"
#include "tests/support/Files.h"
#include "tests/support/Fixture.h"

namespace tovrtest {

#if defined(_MSC_VER)
constexpr std::size_t kDestructorEntries = 1;
#else
constexpr std::size_t kDestructorEntries = 2;  // this ABI keeps a complete and a deleting destructor
#endif

// Calls entry `entry` of the object's table.
template <class Result, class... Arguments>
Result callEntry(void* object, std::size_t entry, Arguments... arguments) {
  void** table = *static_cast<void***>(object);
  return reinterpret_cast<Result (*)(void*, Arguments...)>(table[entry])(object, static_cast<Arguments>(arguments)...);
}

// Calls slot `slot` of an interface whose slot 0 is the destructor.
template <class Result, class... Arguments>
Result call(void* object, std::size_t slot, Arguments... arguments) {
  return callEntry<Result, Arguments...>(object, slot - 1 + kDestructorEntries, static_cast<Arguments>(arguments)...);
}

class SlotTest : public FolderTest {
 protected:
  tovrhost::PluginHost host{TOVR_PLUGIN_FILE};
};

TEST_F(SlotTest, ManagersOpenFillReadCheckAndCloseFiles) {
  void* manager = &host.manager();
  const auto onRecord = [&](std::size_t slot, DataBase& record) {
    return call<int, DataBase*>(manager, slot, &record);
  };
  EXPECT_EQ((call<int, std::string, std::string>(manager, 1, path("a.db"), kRawKey)), kOk);
  EXPECT_EQ(call<int>(manager, 4), kUnknownDatabaseType);
  EXPECT_STREQ(call<const char*>(manager, 10), "no such table: DB_Info");
  EXPECT_EQ(call<int>(manager, 3), kOk);
  const std::unique_ptr<DataBase> record(call<DataBase*, int>(manager, 5, kDBInfo));
  auto& info = dynamic_cast<DBInfo&>(*record);
  info.dbtype = kByName;
  info.dbname = "stored";
  EXPECT_EQ(onRecord(7, info), kOk);
  EXPECT_EQ(call<int>(manager, 4), kByName);
  info.dbname = "overwritten by the query";
  EXPECT_EQ(onRecord(9, info), kOk);
  EXPECT_EQ(onRecord(6, info), kOk);
  EXPECT_EQ(info.dbname, "stored");
  EXPECT_EQ(onRecord(8, info), kOk);
  EXPECT_EQ(call<int>(manager, 4), kUnknownDatabaseType);
  CoefDataResult result;
  EXPECT_EQ(onRecord(9, result), kInvalidRecord) << "of the four, only the update refuses this record";
  EXPECT_EQ(call<int>(manager, 2), kOk);
  EXPECT_STREQ(call<const char*>(manager, 10), "no database file is open");
  EXPECT_FALSE((call<bool, std::string>(manager, 11, path("a.db"))));
}

class ConnectionSlotTest : public SlotTest {
 protected:
  using Destructor = void (*)(void*);

  void SetUp() override {
    EXPECT_EQ((call<int, const char*>(db, 1, path("a.db").c_str())), kOk);
    EXPECT_EQ((call<int, const char*, unsigned int>(db, 3, kRawKey, sizeof kRawKey - 1)), kOk);
    EXPECT_EQ((call<int, const char*>(db, 4, "create table t(i, l, d, x, b, n)")), kOk);
  }
  int prepare(const char* sql) { return call<int, const char*, int>(db, 7, sql, -1); }
  int step() { return call<int>(db, 14); }

  void* db = &host.connection();
};

TEST_F(ConnectionSlotTest, StatementsAreBoundSteppedResetAndFinalizedAndTheirColumnsRead) {
  ASSERT_EQ(prepare("insert into t values(?,?,?,?,?,?)"), kOk);
  EXPECT_EQ((call<int, int, int>(db, 8, 1, -5)), kOk);
  EXPECT_EQ((call<int, int, std::int64_t>(db, 9, 2, std::int64_t{1} << 40)), kOk);
  EXPECT_EQ((call<int, int, double>(db, 10, 3, 0.5)), kOk);
  EXPECT_EQ((call<int, int, const char*, int, Destructor>(db, 11, 4, "text", 4, nullptr)), kOk);
  EXPECT_EQ((call<int, int, const void*, int, Destructor>(db, 12, 5, "bl\0b", 4, nullptr)), kOk);
  EXPECT_EQ(step(), kStepDone);
  EXPECT_EQ(call<int>(db, 15), kOk);
  EXPECT_EQ((call<int, int>(db, 13, 1)), kOk);
  EXPECT_EQ(step(), kStepDone) << "the other parameters are still bound";
  EXPECT_EQ(call<int>(db, 16), kOk);
  EXPECT_EQ(step(), SQLITE_MISUSE);
  ASSERT_EQ(prepare("select i, d, x, b from t"), kOk);
  ASSERT_EQ(step(), kStepRow);
  EXPECT_EQ((call<int, int>(db, 21, 0)), -5);
  EXPECT_EQ((call<double, int>(db, 22, 1)), 0.5);
  EXPECT_STREQ(reinterpret_cast<const char*>(call<const unsigned char*, int>(db, 23, 2)), "text");
  EXPECT_EQ((call<int, int>(db, 20, 3)), 4);
  EXPECT_EQ((std::string(static_cast<const char*>(call<const void*, int>(db, 19, 3)), 4)), std::string("bl\0b", 4));
  char** cells = nullptr;
  int rows = 0;
  int columns = 0;
  const char* query = "select l, i from t";
  ASSERT_EQ((call<int, const char*, char***, int*, int*>(db, 17, query, &cells, &rows, &columns)), kOk);
  ASSERT_EQ(rows, 2);
  ASSERT_EQ(columns, 2);
  EXPECT_STREQ(cells[2], "1099511627776");
  EXPECT_EQ(cells[5], nullptr);
  call<void, char**>(db, 18, cells);
}

TEST_F(ConnectionSlotTest, ErrorsAreToldAndTheFileClosed) {
  EXPECT_EQ(prepare("nonsense"), SQLITE_ERROR);
  EXPECT_EQ(call<int>(db, 5), SQLITE_ERROR);
  EXPECT_STREQ(call<const char*>(db, 6), "near \"nonsense\": syntax error");
  EXPECT_EQ(call<int>(db, 2), kOk);
  EXPECT_EQ((call<int, const char*>(db, 4, "select 1")), SQLITE_MISUSE);
}

class EncryptionSlotTest : public SlotTest {
 protected:
  using Text = const std::string&;

  Bytes onBuffer(std::size_t slot, const Bytes& input) {
    Bytes output;
    EXPECT_TRUE((call<bool, Text, Text, const Bytes&, Bytes&>(service, slot, key, key, input, output))) << slot;
    return output;
  }
  Bytes onFile(std::size_t slot, const std::string& file) {
    EXPECT_TRUE((call<bool, Text, Text, Text>(service, slot, key, key, file))) << slot;
    return contentOf(file);
  }
  Bytes onFile(std::size_t slot, const std::string& source, const std::string& destination) {
    EXPECT_TRUE((call<bool, Text, Text, Text, Text>(service, slot, key, key, source, destination))) << slot;
    return contentOf(destination);
  }

  void* service = &host.encryption();
  const std::string key = "kelptarn";
  const Bytes plain = bytesOf("thirteen byte");
};

TEST_F(EncryptionSlotTest, BuffersAndFilesAreEncipheredAndDeciphered) {
  const Bytes cipher = onBuffer(1, plain);
  EXPECT_NE(cipher, zeroPadded(plain));
  EXPECT_EQ(onBuffer(2, cipher), zeroPadded(plain));
  EXPECT_EQ(onBuffer(3, plain), cipher);
  EXPECT_EQ(onBuffer(4, cipher), zeroPadded(plain));
  const std::string a = path("a");
  writeFile(a, plain);
  EXPECT_EQ(onFile(6, a, path("b")), cipher);
  EXPECT_EQ(onFile(5, a), cipher);
  EXPECT_EQ(onFile(8, a, path("c")), plain);
  EXPECT_EQ(onFile(7, a), plain);
}

struct CountingMessage final : lmx::IMessage {
  void reserved0() override { ADD_FAILURE(); }
  void reserved1() override { ADD_FAILURE(); }
  int handBack() override { return ++handedBack; }  // must not become the handler's result
  int handedBack = 0;
};

TEST_F(SlotTest, HandlersHandMessagesBackAndAnswerZero) {
  host.manager();
  CountingMessage message;
  void* asMessage = static_cast<lmx::IMessage*>(&message);
  EXPECT_EQ(callEntry<int>(asMessage, 2), 1);
  EXPECT_EQ((call<int, void*>(host.handler("DBOperate"), 1, asMessage)), 0);
  EXPECT_EQ(message.handedBack, 2);
  EXPECT_EQ((call<int, void*>(host.handler("Encryption"), 1, asMessage)), 0);
  EXPECT_EQ(message.handedBack, 3);
}

TEST(HostSlotTest, HostsAreAskedAtTheirSlots) {
  TestHost testHost;
  testHost.served = false;
  void* asHost = static_cast<IPluginHost*>(&testHost);
  void* made = callEntry<void*, const char*, const char*, void*, void*, void*, std::int32_t>(
      asHost, 0, "cpp.Encryption", "Encryption", nullptr, nullptr, nullptr, 0);
  EXPECT_EQ(made, static_cast<IEncryption*>(&testHost.encryption));
  EXPECT_EQ((callEntry<void*, const char*>(asHost, 3, "Encryption")), made);
}

}  // namespace tovrtest
