// The plug-in as a host loads it, and what the library does with and without a host.
#include "host/PluginHost.h"
#include "manager/DBManager.h"
#include "plugin/PluginInfo.h"
#include "tests/support/Fixture.h"
#include "tests/support/RecordAnswers.h"

namespace tovrtest {

class PluginTest : public testing::Test {
 protected:
  const tovrhost::PluginLibrary library{TOVR_PLUGIN_FILE};
};

TEST_F(PluginTest, DescriptorNamesThePluginAndItsThreeClasses) {
  const PluginInfo& info = library.info();
  EXPECT_STREQ(info.apiVersion, "0.1");
  EXPECT_STREQ(info.name, "dbmanagerplugin");
  EXPECT_STREQ(info.version, "0.1.0");
  EXPECT_STREQ(info.desc, "{\"desc\":\"dbmanager plugin\",\"end\":0 }");
  std::vector<std::string> names;
  for (ClassInfo* const* entry = info.classes; *entry != nullptr; ++entry) {
    names.emplace_back((*entry)->name);
    EXPECT_STREQ((*entry)->desc, "{\"end\":0 }\r\n") << (*entry)->name;
  }
  EXPECT_EQ(names, (std::vector<std::string>{"cpp.DBManager", "cpp.DBOperate", "cpp.Encryption"}));
  EXPECT_EQ(library.findClass("cpp.Nothing"), nullptr);
}

TEST_F(PluginTest, ObjectsAreMadeWithoutAHostAndDestroyedByTheirClassOrTheirHandler) {
  for (const char* name : {"cpp.DBManager", "cpp.DBOperate", "cpp.Encryption"}) {
    SCOPED_TRACE(name);
    const ClassInfo& record = *library.findClass(name);
    record.destroy(nullptr);
    EXPECT_EQ(record.getHandler(nullptr), nullptr);
    void* instance = record.create();
    ASSERT_NE(instance, nullptr);
    lmx::IMessageHandler* handler = record.getHandler(instance);
    EXPECT_EQ(handler == nullptr, name == std::string("cpp.DBManager"));
    handler != nullptr ? delete handler : record.destroy(instance);  // either destroys the whole object
  }
}

// A manager that finds no services: without a host, and with one that keeps none.
class LonelyManagerTest : public FolderTest, public testing::WithParamInterface<bool> {
 protected:
  LonelyManagerTest() {
    pluginit(nullptr);
    manager = std::make_unique<DBManager>();
    host.served = host.creates = false;
    if (GetParam()) pluginit(&host);
  }
  ~LonelyManagerTest() override { pluginit(nullptr); }

  TestHost host;
  std::unique_ptr<DBManager> manager;
};

INSTANTIATE_TEST_SUITE_P(WithoutServices, LonelyManagerTest, testing::Bool(),
                         [](const auto& host) { return host.param ? "OnAHost" : "WithoutAHost"; });

TEST_P(LonelyManagerTest, OpensNothingAndAnswersEveryRecord) {
  EXPECT_EQ(manager->openDB(path("a.db"), "key"), kNoConnection);
  EXPECT_EQ(manager->closeDB(), kNoConnection);
  EXPECT_EQ(manager->createTables(), kNoConnection);
  EXPECT_EQ(manager->getDBType(), kUnknownDatabaseType);
  EXPECT_EQ(manager->errMsg(), nullptr);
  EXPECT_FALSE(manager->checkDB(path("a.db")));
  EXPECT_FALSE(std::filesystem::exists(path("a.db")));
  expectEveryRecordRefused(*manager, kNoConnection);
}

class HostServicesTest : public FolderTest {
 protected:
  HostServicesTest() { pluginit(host.get()); }
  ~HostServicesTest() override { pluginit(nullptr); }

  std::unique_ptr<TestHost> host = std::make_unique<TestHost>();
};

TEST_F(HostServicesTest, OperatorsCreateWhatTheHostDoesNotKeepAndTheManagerOnlyFinds) {
  host->served = false;
  DBManager manager;
  ASSERT_EQ(host->calls.size(), 15U) << "seven operators, two services each; one of them had to be created";
  EXPECT_EQ(host->calls[0], "find DBOperate");
  EXPECT_EQ(host->calls[1], "create cpp.DBOperate DBOperate");
  EXPECT_EQ(host->calls[2], "find Encryption");
  host->served = host->creates = false;
  EXPECT_EQ(manager.openDB(path("a.db"), kRawKey), kNoConnection);
  EXPECT_EQ(host->calls.back(), "find DBOperate");
}

// The file operations look the connection up at each call, the operators when they are made.
TEST_F(HostServicesTest, ManagerOlderThanItsHost) {
  pluginit(nullptr);
  DBManager manager;
  pluginit(host.get());
  EXPECT_EQ(manager.openDB(path("a.db"), kRawKey), kOk);
  EXPECT_EQ(manager.createTables(), kNoConnection);
  expectEveryRecordRefused(manager, kNoConnection);
  EXPECT_FALSE(manager.checkDB(path("a.db")));
  EXPECT_EQ(manager.closeDB(), kOk);
}

TEST_F(HostServicesTest, ServicesMayGoBeforeTheManagerAndRecordsOutliveBoth) {
  auto manager = std::make_unique<DBManager>();
  EXPECT_EQ(manager->openDB(path("a.db"), kRawKey), kOk);
  const std::unique_ptr<DataBase> record(manager->createData(kScreenInfoData));
  auto& name = dynamic_cast<ScreenInfoData&>(*record).screenname;
  name = "longer than what fits into the record itself";
  host.reset();
  manager.reset();
  EXPECT_EQ(name, "longer than what fits into the record itself");
}

}  // namespace tovrtest
