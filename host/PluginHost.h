// A reference host: loads the plug-in, keeps its objects by name and destroys everything in the right order.
//
// What a host must do and nothing more; read it beside docs/host-guide.md. Single-threaded.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "crypto/IEncryption.h"
#include "host/PluginLibrary.h"
#include "manager/IDBManager.h"
#include "storage/IDBOperate.h"

namespace tovrhost {

// A call of the library that failed. The text says what was done, the code, its meaning and, if the engine refused it,
// the engine's words.
class StatusError : public std::runtime_error {
 public:
  StatusError(int code, const std::string& text) : std::runtime_error(text), code_(code) {}
  int code() const { return code_; }

 private:
  int code_;
};

class PluginHost final : public tovr::IPluginHost {
 public:
  // Loads the library and gives it this host. Throws std::runtime_error when it cannot be loaded, and std::logic_error
  // while another PluginHost of this process uses the same copy of the library: the two would work on each other's
  // file.
  explicit PluginHost(const std::string& libraryPath);
  PluginHost(const PluginHost&) = delete;
  PluginHost& operator=(const PluginHost&) = delete;
  // Destroys the objects, the youngest first (so the manager goes before the services it borrows), takes the host
  // back from the library and unloads it. REQUIRES: no record of the library is left.
  ~PluginHost();

  const tovr::PluginInfo& info() const { return library_.info(); }

  // Opens (or creates) the file with that page key. Throws std::invalid_argument for an empty key, which would leave
  // the file unencrypted, and StatusError if the library refuses; then no file is open.
  void openDB(const std::string& path, const std::string& key);

  // Throws StatusError unless `code`, the answer of the call that `what` names, is 0.
  void require(int code, const std::string& what);

  // The services, created when first asked for, owned by this host. Throw std::runtime_error if creation fails.
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
