// A host in this process, whose services can be made to fail, or to be missing.
#pragma once

#include <string>
#include <vector>

#include "crypto/Encryption.h"
#include "plugin/IPluginHost.h"
#include "storage/DBOperate.h"
#include "tests/support/FaultyServices.h"

extern "C" void pluginit(void* host);

namespace tovrtest {

class TestHost final : public tovr::IPluginHost {
 public:
  void* createObject(const char* className, const char* objectName, void* reserved1, void* reserved2, void* reserved3,
                     std::int32_t reserved4) override;
  void reserved1() override { calls.emplace_back("reserved1"); }
  void reserved2() override { calls.emplace_back("reserved2"); }
  void* findObject(const char* objectName) override;

  FaultPoints points;  // of both services
  tovr::DBOperate engine;
  FaultyConnection connection{engine, points};
  tovr::Encryption cipher;
  FaultyEncryption encryption{cipher, points};
  tovr::IEncryption* servedEncryption = &encryption;
  bool served = true;              // findObject finds the services
  bool creates = true;             // createObject hands them out, and they are served from then on
  std::vector<std::string> calls;  // "find DBOperate", "create cpp.DBOperate DBOperate"

 private:
  void* serviceOf(const std::string& objectName);
};

}  // namespace tovrtest
