// Where the library keeps the host that pluginit gave it: one record per process, made on first use.
#pragma once

#include "plugin/IPluginHost.h"

namespace tovr {

struct HostHolder {
  IPluginHost* host = nullptr;  // borrowed; null until pluginit
  void* reserved[2] = {nullptr, nullptr};
};

// The one holder. Its construction is thread-safe; reads and writes of the pointer are not synchronised.
HostHolder& hostHolder();

}  // namespace tovr
