// The plug-in's life in a host that links nothing of it: loaded and unloaded, used by two, left in the wrong order.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if defined(__linux__)
#include <malloc.h>
#endif

#include "host/PluginHost.h"
#include "tests/support/SecretWatch.h"

namespace tovrtest {

namespace fs = std::filesystem;
using namespace tovr;

struct HostLifeTest : testing::Test {
  HostLifeTest() { fs::create_directory(folder); }
  ~HostLifeTest() override {
    expectNoSecretsIn(folder);
    fs::remove_all(folder);
  }
  const fs::path folder = fs::temp_directory_path() / ("tovr-life-" + std::to_string(std::random_device{}()));
  const std::string file = (folder / "file.db").string();
};

// A new file with a screen 0,0..7,3.
void makeFile(tovrhost::PluginHost& host, const std::string& file) {
  ASSERT_EQ(host.manager().openDB(file, kRawKey) + host.manager().createTables(), 0);
  ASSERT_EQ(host.manager().insertData(host.makeRecord<DBInfo>().get()), 0);
  auto screen = host.makeRecord<ScreenInfoData>();
  screen->dbid = 1;
  screen->left = screen->top = 0;
  screen->right = 7;
  screen->bottom = 3;
  ASSERT_EQ(host.manager().insertData(screen.get()), 0);
}

std::unique_ptr<CoefData> area(tovrhost::PluginHost& host) {
  auto record = host.makeRecord<CoefData>();
  record->coeftype = 1;
  record->left = record->top = 0;
  record->right = 7;
  record->bottom = 3;
  return record;
}

void storeAndRead(tovrhost::PluginHost& host, unsigned char value) {
  std::vector<unsigned char> cells(64, value);
  auto stored = area(host);
  stored->coefBuffer = {2, cells.data(), 64};
  ASSERT_EQ(host.manager().insertData(stored.get()), 0);
  auto read = area(host);
  ASSERT_EQ(host.manager().queryData(read.get()), 0);
  const std::unique_ptr<unsigned char[]> bytes(read->coefBuffer.data);
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
    ASSERT_EQ(host.manager().openDB(file, kRawKey), 0);
    storeAndRead(host, static_cast<unsigned char>(round));
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

TEST_F(HostLifeTest, TwoManagersShareOneConnection) {
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  makeFile(host, file);
  storeAndRead(host, 1);
  auto* second = static_cast<IDBManager*>(host.createObject("cpp.DBManager", "second", nullptr, nullptr, nullptr, 0));
  ASSERT_NE(second, nullptr);
  auto record = area(host);
  EXPECT_EQ(second->getDBType(), 0);
  EXPECT_EQ(second->queryData(record.get()), 0);
  delete[] record->coefBuffer.data;
  EXPECT_EQ(second->closeDB(), 0);
  EXPECT_STREQ(host.manager().errMsg(), "no database file is open");
  EXPECT_EQ(host.manager().closeDB(), 0);
}

TEST_F(HostLifeTest, AfterTheFileIsClosedEveryCallSaysSo) {
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  IDBManager& manager = host.manager();
  for (const bool wasOpen : {false, true}) {
    if (wasOpen) makeFile(host, file);
    EXPECT_EQ(manager.closeDB(), 0);
    EXPECT_EQ(manager.createTables(), 21);
    EXPECT_EQ(manager.getDBType(), 2);
    EXPECT_STREQ(manager.errMsg(), "no database file is open");
    for (int type = 0; type <= 6; ++type) {
      const std::unique_ptr<DataBase> record(manager.createData(type));
      const int read[] = {4111, 0, 4096, 21, 21, 21, 21};
      const int inserted[] = {4111, 21, 21, 21, 21, 0, 0};
      const int updated[] = {4111, 0, 21, 0, 0, 4096, 0};
      EXPECT_EQ(manager.queryData(record.get()), read[type]) << type;
      EXPECT_EQ(manager.insertData(record.get()), inserted[type]) << type;
      EXPECT_EQ(manager.updateData(record.get()), updated[type]) << type;
      EXPECT_EQ(manager.deleteData(record.get()), type == kConfigData ? 0 : 21) << type;
    }
  }
}

// Records and the blocks in them are the host's: they outlive the file and the services, though not the library.
TEST_F(HostLifeTest, RecordsOutliveTheFileAndServicesGoInAnyOrder) {
  for (const bool connectionFirst : {false, true}) {
    const tovrhost::PluginLibrary library(TOVR_PLUGIN_FILE);
    struct Host final : IPluginHost {
      void* createObject(const char*, const char*, void*, void*, void*, std::int32_t) override { return nullptr; }
      void reserved1() override {}
      void reserved2() override {}
      void* findObject(const char* name) override { return name == std::string("DBOperate") ? connection : encryption; }
      void* connection = nullptr;
      void* encryption = nullptr;
    } host;
    library.init(&host);
    const auto* managerClass = library.findClass("cpp.DBManager");
    host.connection = library.findClass("cpp.DBOperate")->create();
    host.encryption = library.findClass("cpp.Encryption")->create();
    auto* manager = static_cast<IDBManager*>(managerClass->create());
    ASSERT_EQ(manager->openDB(file, kRawKey) + manager->createTables(), 0);
    const std::unique_ptr<DataBase> record(manager->createData(kCoefDataResult));
    EXPECT_EQ(manager->queryData(record.get()), 0);
    if (!connectionFirst) managerClass->destroy(manager);
    library.findClass("cpp.Encryption")->destroy(host.encryption);
    library.findClass("cpp.DBOperate")->destroy(host.connection);
    if (connectionFirst) managerClass->destroy(manager);
    EXPECT_EQ(static_cast<CoefDataResult&>(*record).coefs.size(), 0U);
    library.init(nullptr);
  }
}

}  // namespace tovrtest
