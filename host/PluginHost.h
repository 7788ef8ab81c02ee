// A reference host: loads the plug-in, keeps its objects by name and destroys everything in the right order.
//
// What a host must do and nothing more; read it beside docs/host-guide.md. Single-threaded.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "crypto/IEncryption.h"
#include "host/PluginLibrary.h"
#include "manager/IDBManager.h"
#include "storage/IDBOperate.h"

namespace tovrhost {

class PluginHost final : public tovr::IPluginHost {
 public:
  // Loads the library and gives it this host. Throws std::runtime_error when it cannot be loaded.
  explicit PluginHost(const std::string& libraryPath);
  PluginHost(const PluginHost&) = delete;
  PluginHost& operator=(const PluginHost&) = delete;
  // Destroys the objects, the youngest first (so the manager goes before the services it borrows), takes the host
  // back from the library and unloads it. REQUIRES: no record of the library is left.
  ~PluginHost();

  const tovr::PluginInfo& info() const { return library_.info(); }

  // The services, created when first asked for, owned by this host. Throw std::runtime_error where creation fails.
  tovr::IDBManager& manager();
  tovr::IDBOperate& connection();
  tovr::IEncryption& encryption();

  // A new record of the library's, deleted through its virtual destructor: makeRecord<tovr::CoefData>().
  template <class Record>
  std::unique_ptr<Record> makeRecord() {
    return std::unique_ptr<Record>(static_cast<Record*>(manager().createData(Record().type)));
  }

  // The message handler of a kept object; null without one.
  lmx::IMessageHandler* handler(const std::string& objectName) const;

  // IPluginHost, called by the library.
  void* createObject(const char* className, const char* objectName, void* reserved1, void* reserved2, void* reserved3,
                     std::int32_t reserved4) override;
  void reserved1() override {}
  void reserved2() override {}
  void* findObject(const char* objectName) override;

 private:
  struct Object {
    std::string name;
    const tovr::ClassInfo* info;
    void* instance;  // the primary base
  };

  const Object* find(const std::string& name) const;
  void* findOrCreate(const char* className, const char* objectName);

  PluginLibrary library_;
  std::vector<Object> objects_;  // in the order in which their creation was finished
};

}  // namespace tovrhost
