// Has a compiler lay out every class that hosts and the library call each other through; only scripts/layout-check.sh
// compiles it, for Microsoft's target.
#include <cstddef>

#include "crypto/Encryption.h"
#include "manager/DBManager.h"
#include "plugin/IPluginHost.h"
#include "plugin/PluginInfo.h"
#include "storage/DBOperate.h"

namespace tovr {

static_assert(offsetof(ClassInfo, create) == 0);
static_assert(offsetof(ClassInfo, destroy) == 64);
static_assert(offsetof(ClassInfo, getHandler) == 128);
static_assert(offsetof(ClassInfo, name) == 192);
static_assert(offsetof(ClassInfo, desc) == 200);

static_assert(offsetof(PluginInfo, apiVersion) == 0);
static_assert(offsetof(PluginInfo, classes) == 8);
static_assert(offsetof(PluginInfo, name) == 16);
static_assert(offsetof(PluginInfo, version) == 24);
static_assert(offsetof(PluginInfo, desc) == 32);

// A pointer to a virtual function, or a call, settles the tables of its class.
auto managerInterface = &IDBManager::closeDB;
auto connectionInterface = &IDBOperate::close;
auto encryptionInterface = &IEncryption::encrypt;
auto host = &IPluginHost::findObject;
auto handler = &lmx::IMessageHandler::handleMessage;
auto message = &lmx::IMessage::handBack;
auto manager = &DBManager::closeDB;
auto connection = &DBOperate::close;
auto encryption = &Encryption::encrypt;
void deleteRecord(DataBase* record) { delete record; }

}  // namespace tovr
