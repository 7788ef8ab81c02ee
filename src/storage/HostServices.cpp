#include "storage/HostServices.h"

#include "plugin/HostHolder.h"

namespace tovr {
namespace {

constexpr char kConnectionClass[] = "cpp.DBOperate";
constexpr char kConnectionName[] = "DBOperate";
constexpr char kEncryptionClass[] = "cpp.Encryption";
constexpr char kEncryptionName[] = "Encryption";

void* find(const char* name) {
  IPluginHost* host = hostHolder().host;
  return host != nullptr ? host->findObject(name) : nullptr;
}

void* findOrCreate(const char* className, const char* name) {
  if (void* found = find(name)) return found;
  IPluginHost* host = hostHolder().host;
  return host != nullptr ? host->createObject(className, name, nullptr, nullptr, nullptr, 0) : nullptr;
}

}  // namespace

IDBOperate* findConnection() { return static_cast<IDBOperate*>(find(kConnectionName)); }

IDBOperate* findOrCreateConnection() {
  return static_cast<IDBOperate*>(findOrCreate(kConnectionClass, kConnectionName));
}

IEncryption* findOrCreateEncryption() {
  return static_cast<IEncryption*>(findOrCreate(kEncryptionClass, kEncryptionName));
}

}  // namespace tovr
