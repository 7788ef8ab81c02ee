#include "host/PluginHost.h"

#include <algorithm>

#include "host/StatusText.h"
#include "storage/StatusCodes.h"

namespace tovrhost {
namespace {

constexpr int kFirstOwnCode = 4096;  // of the library; those below are the engine's, which has words for them

}  // namespace

PluginHost::PluginHost(const std::string& libraryPath) : library_(libraryPath) { library_.init(this); }

PluginHost::~PluginHost() {
  while (!objects_.empty()) {
    const Object last = objects_.back();
    objects_.pop_back();
    last.info->destroy(last.instance);
  }
  library_.init(nullptr);
}

void PluginHost::openDB(const std::string& path, const std::string& key) {
  if (key.empty()) throw std::invalid_argument("an empty key would leave " + path + " unencrypted");
  try {
    require(manager().openDB(path, key), "open " + path);
  } catch (...) {
    manager().closeDB();  // a file that failed to open is open, perhaps unencrypted
    throw;
  }
}

void PluginHost::require(int code, const std::string& what) {
  if (code == tovr::kOk) return;
  std::string text = what + ": " + std::to_string(code) + ", " + statusText(code);
  const char* engine = code < kFirstOwnCode ? manager().errMsg() : nullptr;
  if (engine != nullptr) text += std::string(" (") + engine + ")";
  throw StatusError(code, text);
}

tovr::IDBManager& PluginHost::manager() {
  return *static_cast<tovr::IDBManager*>(findOrCreate("cpp.DBManager", "DBManager"));
}

tovr::IDBOperate& PluginHost::connection() {
  return *static_cast<tovr::IDBOperate*>(findOrCreate("cpp.DBOperate", "DBOperate"));
}

tovr::IEncryption& PluginHost::encryption() {
  return *static_cast<tovr::IEncryption*>(findOrCreate("cpp.Encryption", "Encryption"));
}

lmx::IMessageHandler* PluginHost::handler(const std::string& objectName) const {
  const Object* object = find(objectName);
  return object != nullptr ? object->info->getHandler(object->instance) : nullptr;
}

void* PluginHost::createObject(const char* className, const char* objectName, void* /*reserved1*/, void* /*reserved2*/,
                               void* /*reserved3*/, std::int32_t /*reserved4*/) {
  const tovr::ClassInfo* info = library_.findClass(className);
  if (info == nullptr || find(objectName) != nullptr) return nullptr;
  void* instance = info->create();  // may call back: a manager asks for its services
  if (instance != nullptr) objects_.push_back({objectName, info, instance});
  return instance;
}

void* PluginHost::findObject(const char* objectName) {
  const Object* object = find(objectName);
  return object != nullptr ? object->instance : nullptr;
}

const PluginHost::Object* PluginHost::find(const std::string& name) const {
  const auto found =
      std::find_if(objects_.begin(), objects_.end(), [&](const Object& object) { return object.name == name; });
  return found != objects_.end() ? &*found : nullptr;
}

void* PluginHost::findOrCreate(const char* className, const char* objectName) {
  void* instance = findObject(objectName);
  if (instance == nullptr) instance = createObject(className, objectName, nullptr, nullptr, nullptr, 0);
  if (instance == nullptr) throw std::runtime_error(std::string("the plug-in cannot create ") + className);
  return instance;
}

}  // namespace tovrhost
