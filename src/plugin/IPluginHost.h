// The host object that pluginit receives. Slot order is part of the contract; slots 1 and 2 are never called here.
#pragma once

#include <cstdint>

namespace tovr {

class IPluginHost {
 public:
  // Creates an instance of a registered class ("cpp.DBOperate") and keeps it under `objectName` ("DBOperate"). The
  // other arguments are always zero. Returns the instance as its primary base, owned by the host, or null.
  virtual void* createObject(const char* className, const char* objectName, void* reserved1, void* reserved2,
                             void* reserved3, std::int32_t reserved4) = 0;  // slot 0
  virtual void reserved1() = 0;                                             // slot 1
  virtual void reserved2() = 0;                                             // slot 2
  // The instance that the host keeps under that name, as its primary base, or null.
  virtual void* findObject(const char* objectName) = 0;  // slot 3

 protected:
  IPluginHost() = default;
  IPluginHost(const IPluginHost&) = default;
  IPluginHost& operator=(const IPluginHost&) = default;
  ~IPluginHost() = default;  // the library never destroys its host
};

}  // namespace tovr
