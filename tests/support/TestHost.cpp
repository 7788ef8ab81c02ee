#include "tests/support/TestHost.h"

namespace tovrtest {

void* TestHost::createObject(const char* className, const char* objectName, void* a, void* b, void* c, std::int32_t d) {
  const bool zeros = a == nullptr && b == nullptr && c == nullptr && d == 0;
  calls.push_back(std::string("create ") + className + " " + objectName + (zeros ? "" : " not zero"));
  if (!creates) return nullptr;
  served = true;
  return serviceOf(objectName);
}

void* TestHost::findObject(const char* objectName) {
  calls.push_back(std::string("find ") + objectName);
  return served ? serviceOf(objectName) : nullptr;
}

void* TestHost::serviceOf(const std::string& objectName) {
  if (objectName == "DBOperate") return static_cast<tovr::IDBOperate*>(&connection);
  if (objectName == "Encryption") return servedEncryption;
  return nullptr;
}

}  // namespace tovrtest
