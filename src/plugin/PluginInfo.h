// The descriptor that the library hands out, and its two exported functions. Field order is part of the contract.
#pragma once

#include <functional>

#include "plugin/IMessageHandler.h"

namespace tovr {

// How a host makes, destroys and reaches the instances of one class. The untyped pointers are those of the
// instance's primary base: IDBManager, IDBOperate or IEncryption.
struct ClassInfo {
  std::function<void*()> create;                           // null when memory is exhausted
  std::function<void(void*)> destroy;                      // does nothing with null
  std::function<lmx::IMessageHandler*(void*)> getHandler;  // null where the class handles no messages
  const char* name;                                        // "cpp.DBManager"
  const char* desc;                                        // JSON
};

struct PluginInfo {
  const char* apiVersion;
  ClassInfo* const* classes;  // ends with a null pointer
  const char* name;
  const char* version;
  const char* desc;  // JSON
};

// The types of the two exported functions, for dlsym and GetProcAddress.
// pluginfo: the descriptor (a PluginInfo), valid while the library is loaded. Never fails.
// pluginit: keeps the host (an IPluginHost) for all later lookups; null forgets it. The host must outlive its use.
using PluginfoFunction = const void* (*)();
using PluginitFunction = void (*)(void* host);

}  // namespace tovr
