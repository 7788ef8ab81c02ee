// The plug-in's life in a host that links nothing of it: loaded and unloaded, used by two, called when nothing is open.
#include <sqlcipher/sqlite3.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#if defined(__linux__)
#include <malloc.h>
#endif

#include "host/PluginHost.h"
#include "storage/StatusCodes.h"
#include "tests/support/FolderTest.h"
#include "tests/support/RecordAnswers.h"

namespace tovrtest {

namespace fs = std::filesystem;
using namespace tovr;

struct HostLifeTest : FolderTest {
  const std::string file = path("file.db");
};

template <class Record>
std::unique_ptr<Record> placed(tovrhost::PluginHost& host) {
  auto record = host.makeRecord<Record>();
  record->left = record->top = 0;
  record->right = 7;
  record->bottom = 3;
  return record;
}

// A new file with a screen.
void makeFile(tovrhost::PluginHost& host, const std::string& file) {
  ASSERT_EQ(host.manager().openDB(file, kRawKey), kOk);
  ASSERT_EQ(host.manager().createTables(), kOk);
  ASSERT_EQ(host.manager().insertData(host.makeRecord<DBInfo>().get()), kOk);
  auto screen = placed<ScreenInfoData>(host);
  screen->dbid = 1;
  ASSERT_EQ(host.manager().insertData(screen.get()), kOk);
}

void storeAndRead(tovrhost::PluginHost& host, IDBManager& manager, unsigned char value) {
  std::vector<unsigned char> cells(64, value);
  auto record = placed<CoefData>(host);
  record->coeftype = 1;
  record->coefBuffer = {2, cells.data(), 64};
  ASSERT_EQ(manager.insertData(record.get()), kOk);
  ASSERT_EQ(manager.queryData(record.get()), kOk);
  ASSERT_EQ(record->coefBuffer.datasize, 64);
  const std::unique_ptr<unsigned char[]> bytes(record->coefBuffer.data);
  EXPECT_TRUE(std::equal(cells.begin(), cells.end(), bytes.get()));
}

#if defined(__linux__)

// Open files, mapped files, and bytes in use of the heap (none counted under a sanitizer).
struct Footprint {
  std::ptrdiff_t files = std::distance(fs::directory_iterator("/proc/self/fd"), {});
  std::ptrdiff_t regions = [] {
    std::ifstream maps("/proc/self/maps");
    return std::count(std::istreambuf_iterator<char>(maps), {}, '/');  // of their paths
  }();
  std::size_t heap = mallinfo2().uordblks;
};

TEST_F(HostLifeTest, AThousandLivesDoNotGrow) {
  const auto live = [&](int round) {
    tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
    if (round == 0) return makeFile(host, file);
    ASSERT_EQ(host.manager().openDB(file, kRawKey), kOk);
    storeAndRead(host, host.manager(), static_cast<unsigned char>(round));
  };
  testing::internal::CaptureStdout();
  for (int round = 0; round < 400; ++round) live(round);
  const Footprint before;
  for (int round = 400; round < 1000; ++round) live(round);
  const Footprint after;
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(after.files, before.files);
  EXPECT_LE(after.regions, before.regions);
  // The allocator counts blocks that it keeps for itself, some more for a while.
  EXPECT_LE(after.heap, before.heap + 25000) << "of " << before.heap << " bytes";
}

#endif

TEST_F(HostLifeTest, SecondHost_SameLibrary) {
  const auto another = [] { tovrhost::PluginHost host(TOVR_PLUGIN_FILE); };
  {
    tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
    EXPECT_THROW(another(), std::logic_error);
    makeFile(host, file);  // the first one has kept its library
    storeAndRead(host, host.manager(), 1);
    EXPECT_EQ(host.manager().closeDB(), kOk);
  }
  EXPECT_NO_THROW(another());
}

TEST_F(HostLifeTest, OpenDB_ClosesWhatItRefuses) {
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  EXPECT_THROW(host.openDB(file, ""), std::invalid_argument);
  EXPECT_FALSE(fs::exists(file));
  makeFile(host, file);
  try {
    host.openDB(file, "another key");
    ADD_FAILURE() << "a wrong key opens it";
  } catch (const tovrhost::StatusError& error) {
    EXPECT_EQ(error.code(), SQLITE_NOTADB) << error.what();
  }
  EXPECT_EQ(host.manager().createTables(), SQLITE_MISUSE);
  EXPECT_NO_THROW(host.openDB(file, kRawKey));
}

TEST_F(HostLifeTest, TwoManagersShareOneConnection) {
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  makeFile(host, file);
  auto* second = static_cast<IDBManager*>(host.createObject("cpp.DBManager", "second", nullptr, nullptr, nullptr, 0));
  ASSERT_NE(second, nullptr);
  storeAndRead(host, *second, 1);
  EXPECT_EQ(second->closeDB(), kOk);
  EXPECT_STREQ(host.manager().errMsg(), "no database file is open");
  EXPECT_EQ(host.manager().closeDB(), kOk);
}

void expectClosed(IDBManager& manager) {
  EXPECT_EQ(manager.closeDB(), kOk);
  EXPECT_EQ(manager.createTables(), SQLITE_MISUSE);
  EXPECT_EQ(manager.getDBType(), kUnknownDatabaseType);
  EXPECT_STREQ(manager.errMsg(), "no database file is open");
  expectEveryRecordRefused(manager, SQLITE_MISUSE);
}

TEST_F(HostLifeTest, BeforeAFileIsOpenAndAfterItIsClosedEveryCallSaysSo) {
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  expectClosed(host.manager());
  makeFile(host, file);
  EXPECT_EQ(host.manager().closeDB(), kOk);
  expectClosed(host.manager());
}

}  // namespace tovrtest
