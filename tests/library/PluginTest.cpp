// The plug-in as a host loads it, and what the library does with and without a host.
#include "host/PluginHost.h"
#include "manager/DBManager.h"
#include "plugin/PluginInfo.h"
#include "storage/DataTableOperateBase.h"
#include "tests/support/Fixture.h"

extern "C" void pluginit(void* host);

namespace tovrtest {

TEST(PluginTest, DescriptorNamesItselfAndItsThreeClasses) {
  const tovrhost::PluginLibrary library(TOVR_PLUGIN_FILE);
  const PluginInfo& info = library.info();
  EXPECT_EQ(std::string(info.apiVersion) + info.name + info.version + info.desc,
            "0.1dbmanagerplugin0.1.0{\"desc\":\"dbmanager plugin\",\"end\":0 }");
  std::string names;
  for (ClassInfo* const* entry = info.classes; *entry != nullptr; ++entry) {
    const ClassInfo& record = **entry;
    names += record.name + std::string(" ");
    EXPECT_STREQ(record.desc, "{\"end\":0 }\r\n");
    record.destroy(nullptr);
    EXPECT_EQ(record.getHandler(nullptr), nullptr);
    void* instance = record.create();  // without a host
    ASSERT_NE(instance, nullptr);
    lmx::IMessageHandler* handler = record.getHandler(instance);
    EXPECT_EQ(handler == nullptr, record.name == std::string("cpp.DBManager"));
    handler != nullptr ? delete handler : record.destroy(instance);  // either destroys the whole object
  }
  EXPECT_EQ(names, "cpp.DBManager cpp.DBOperate cpp.Encryption ");
  EXPECT_EQ(library.findClass("cpp.Nothing"), nullptr);
}

using PluginFileTest = FolderTest;

TEST_F(PluginFileTest, WithoutAHostNothingCrashesAndTheConnectionIsMissing) {
  pluginit(nullptr);
  DBManager manager;
  TestHost late;
  for (const bool hostWithoutServices : {false, true}) {
    late.served = late.creates = false;
    if (hostWithoutServices) pluginit(&late);
    EXPECT_EQ(manager.openDB(path("a.db"), "key"), 4096);
    EXPECT_EQ(manager.closeDB(), 4096);
    EXPECT_EQ(manager.createTables(), 4096);
    EXPECT_EQ(manager.getDBType(), 2);
    EXPECT_EQ(manager.errMsg(), nullptr);
    EXPECT_FALSE(manager.checkDB(path("a.db")));
    for (int type = 0; type <= 6; ++type) {
      const std::unique_ptr<DataBase> record(manager.createData(type));
      const int missing = type == 0 ? 4111 : type == 1 ? 0 : 4096;  // no type known; measurements are not read
      EXPECT_EQ(manager.queryData(record.get()), type == 2 ? 4096 : missing) << type;
      EXPECT_EQ(manager.insertData(record.get()), type == 0 ? 4111 : type >= 5 ? 0 : 4096) << type;
      EXPECT_EQ(manager.deleteData(record.get()), type == 3 ? 0 : 4096) << type;
      const int updated[] = {4111, 0, 4096, 0, 0, 4096, 0};
      EXPECT_EQ(manager.updateData(record.get()), updated[type]) << type;
    }
    pluginit(nullptr);
  }
  EXPECT_FALSE(std::filesystem::exists(path("a.db")));
}

TEST_F(PluginFileTest, OperatorsCreateWhatTheHostDoesNotKeepAndTheManagerOnlyFinds) {
  TestHost host;
  host.served = false;
  pluginit(&host);
  DBManager manager;
  ASSERT_EQ(host.calls.size(), 15U);  // seven operators, two services each; one of them had to be created
  EXPECT_EQ(host.calls[0] + "," + host.calls[1], "find DBOperate,create cpp.DBOperate DBOperate");
  host.served = host.creates = false;
  EXPECT_EQ(manager.openDB(path("a.db"), kRawKey), 4096);
  EXPECT_EQ(host.calls.back(), "find DBOperate");
  pluginit(nullptr);
}

}  // namespace tovrtest
