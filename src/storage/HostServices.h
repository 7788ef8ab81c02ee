// The two services that everything below the manager works with, looked up by name at the host of pluginit.
#pragma once

#include "crypto/IEncryption.h"
#include "storage/IDBOperate.h"

namespace tovr {

// The host's connection ("DBOperate"), borrowed. Null without a host, or where the host keeps none.
IDBOperate* findConnection();

// As above, but the host is asked to create what it does not keep yet. Null where it cannot.
IDBOperate* findOrCreateConnection();
IEncryption* findOrCreateEncryption();

}  // namespace tovr
