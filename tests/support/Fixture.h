// What the tests stand on: a fresh folder, a host in this process with a connection that can be made to fail, and a
// manager over an encrypted file.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "crypto/Encryption.h"
#include "manager/IDBManager.h"
#include "manager/Rectangle.h"
#include "plugin/IPluginHost.h"
#include "storage/DBOperate.h"
#include "storage/StatusCodes.h"
#include "tests/faults/FaultyServices.h"
#include "tests/support/SecretWatch.h"

namespace tovrtest {

using namespace tovr;

using Bytes = std::vector<unsigned char>;

// Bytes that only the seed tells: a payload, which SecretWatch remembers.
Bytes pattern(std::size_t size, unsigned int seed);
Bytes bytesOf(const std::string& text);

// What the operation writes to standard output, whoever writes it: no secrets.
std::string printedBy(const std::function<void()>& operation);

template <class Record>
void setRect(Record& record, const Rect& rect) {
  record.left = rect.left;
  record.top = rect.top;
  record.right = rect.right;
  record.bottom = rect.bottom;
}

// "id screenid coefid coeftype areaIndex areaid left top right bottom multilayersize coeftablename"
std::string fieldsOf(const CoefData& record);

class FolderTest : public testing::Test {
 protected:
  FolderTest();
  ~FolderTest() override;
  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  static Bytes contentOf(const std::string& file);
  static void writeFile(const std::string& file, const Bytes& content);

 private:
  std::filesystem::path folder_;
};

// Keeps the two services; what `connectionServed` and `encryptionServed` leave out is not there, nor created.
class TestHost final : public IPluginHost {
 public:
  void* createObject(const char* className, const char* objectName, void* reserved1, void* reserved2, void* reserved3,
                     std::int32_t reserved4) override;
  void reserved1() override { calls.emplace_back("reserved1"); }
  void reserved2() override { calls.emplace_back("reserved2"); }
  void* findObject(const char* objectName) override;

  FaultPoints points;  // of both services
  DBOperate engine;
  FaultyConnection connection{engine, points};
  Encryption cipher;
  FaultyEncryption encryption{cipher, points};
  IEncryption* servedEncryption = &encryption;
  bool served = true;   // findObject finds the services
  bool creates = true;  // createObject hands them out, and they are served from then on
  std::vector<std::string> calls;
};

// The manager of the test's own host; no file is open yet.
class ManagerTest : public FolderTest {
 protected:
  ManagerTest();
  ~ManagerTest() override;
  // From here on the host keeps that service under "Encryption".
  void serveEncryption(IEncryption& service);

  TestHost host;
  std::unique_ptr<IDBManager> manager;
};

class DatabaseTest : public ManagerTest {
 protected:
  // A new file with all tables and, but for type 2, one database-information row.
  void createFile(int dbtype);
  void insertInfo(int dbtype);
  int addScreen(const std::string& name, const Rect& rect);
  void run(const std::string& sql);
  // The result as text: "|" between values, a newline behind each row, NULL as "null".
  std::string rows(const std::string& sql);

  // A coefficient record; `cells` stay the caller's.
  static CoefData coef(const Rect& rect, Bytes& cells, int cellBytes, const std::string& screen = "");
  // The cells that a query gives; the code where it is not 0.
  using Read = std::pair<int, Bytes>;
  Read read(const Rect& rect, const std::string& screen = "", int type = 1);
  int insertData(int datatype, Bytes bytes);
  Read readData(int datatype);
};

}  // namespace tovrtest
