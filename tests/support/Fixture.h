// What the tests of the library stand on: a manager of a host in this process, and an encrypted file under it.
#pragma once

#include <sqlcipher/sqlite3.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "manager/IDBManager.h"
#include "manager/Rectangle.h"
#include "storage/StatusCodes.h"
#include "tests/support/Bytes.h"
#include "tests/support/FolderTest.h"
#include "tests/support/TestHost.h"

namespace tovr {

inline void PrintTo(const Rect& rect, std::ostream* out) {
  *out << "{" << rect.left << ", " << rect.top << ", " << rect.right << ", " << rect.bottom << "}";
}

}  // namespace tovr

namespace tovrtest {

using namespace tovr;

// The database types: how a file finds the place of a block.
constexpr int kByRectangle = 0;
constexpr int kByName = 1;

// What the operation writes to standard output, whoever writes it: no secrets.
std::string printedBy(const std::function<void()>& operation);
// The same, thrown away but for what tells of failures.
void quietly(const std::function<void()>& operation);

template <class Record>
void setRect(Record& record, const Rect& rect) {
  record.left = rect.left;
  record.top = rect.top;
  record.right = rect.right;
  record.bottom = rect.bottom;
}

// The manager of the test's own host; no file is open yet.
class ManagerTest : public FolderTest {
 protected:
  ManagerTest();
  ~ManagerTest() override;
  // From here on the host keeps that service under "Encryption".
  void serveEncryption(IEncryption& service);

  std::string lastStatement() const { return host.connection.statements.back(); }

  TestHost host;
  std::unique_ptr<IDBManager> manager;
};

class DatabaseTest : public ManagerTest {
 protected:
  // A new file "file.db" with all tables, opened; with a row of "DB_Info" that tells the type, or without.
  void createFile(int dbtype);
  void createFileWithoutType();
  void insertInfo(int dbtype);
  int addScreen(const std::string& name, const Rect& rect);

  // A coefficient record of type 1; `cells` stay the caller's.
  static CoefData coef(const Rect& rect, Bytes& cells, int cellBytes, const std::string& screen = "");

  // What a query answers, and the bytes that it gives.
  struct Answer {
    int code;
    Bytes bytes;
  };
  Answer query(const Rect& rect, const std::string& screen = "", int type = 1);
  Bytes cellsAt(const Rect& rect, const std::string& screen = "");  // of a query that succeeds

  std::vector<CoefData> areas();  // as the manager lists them
  std::vector<ScreenInfoData> screens();

  int insertData(int datatype, Bytes bytes);
  Answer readData(int datatype);

  // The file below the library, by SQL. NULL reads "null".
  using Rows = std::vector<std::vector<std::string>>;
  void run(const std::string& sql);
  Rows rows(const std::string& sql);
  std::string value(const std::string& sql);  // the only one of the result
  int number(const std::string& sql);
  int countOf(const std::string& table) { return number("select count(*) from " + table); }
};

// A file that finds blocks by their rectangle, with a screen 0,0,99,99.
class ScreenFileTest : public DatabaseTest {
 protected:
  void SetUp() override;
};

}  // namespace tovrtest
