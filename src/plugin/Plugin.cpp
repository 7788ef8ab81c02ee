// The descriptor, the three class records and the two functions that leave the library.
#include <new>

#include "crypto/Encryption.h"
#include "manager/DBManager.h"
#include "plugin/HostHolder.h"
#include "plugin/PluginInfo.h"
#include "storage/DBOperate.h"

#if defined(_WIN32)
#define TOVR_EXPORT extern "C" __declspec(dllexport)
#else
#define TOVR_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace tovr {
namespace {

// `Interface` is the class's primary base: the only type that ever stands behind the host's untyped pointers.
template <class Interface, class Class>
void* createInstance() {
  try {
    return static_cast<Interface*>(new (std::nothrow) Class());
  } catch (const std::bad_alloc&) {  // a part of the object found no memory
    return nullptr;
  }
}

template <class Interface>
void destroyInstance(void* instance) {
  delete static_cast<Interface*>(instance);
}

template <class Interface, class Class>
lmx::IMessageHandler* handlerOf(void* instance) {
  return static_cast<Class*>(static_cast<Interface*>(instance));
}

lmx::IMessageHandler* noHandler(void* /*instance*/) { return nullptr; }

// The version of what hosts see, its slots and records, which some of them compare: not that of a release.
constexpr char kVersion[] = "0.1.0";

constexpr char kClassDescription[] = "{\"end\":0 }\r\n";

ClassInfo managerClass{createInstance<IDBManager, DBManager>, destroyInstance<IDBManager>, noHandler, "cpp.DBManager",
                       kClassDescription};
ClassInfo connectionClass{createInstance<IDBOperate, DBOperate>, destroyInstance<IDBOperate>,
                          handlerOf<IDBOperate, DBOperate>, "cpp.DBOperate", kClassDescription};
ClassInfo encryptionClass{createInstance<IEncryption, Encryption>, destroyInstance<IEncryption>,
                          handlerOf<IEncryption, Encryption>, "cpp.Encryption", kClassDescription};

ClassInfo* const classTable[] = {&managerClass, &connectionClass, &encryptionClass, nullptr};

constexpr PluginInfo descriptor{"0.1", classTable, "dbmanagerplugin", kVersion,
                                "{\"desc\":\"dbmanager plugin\",\"end\":0 }"};

}  // namespace
}  // namespace tovr

TOVR_EXPORT const void* pluginfo() { return &tovr::descriptor; }

TOVR_EXPORT void pluginit(void* host) { tovr::hostHolder().host = static_cast<tovr::IPluginHost*>(host); }
