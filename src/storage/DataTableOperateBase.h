// The base of the five table operators: the two services they work with, and what all their statements share.
//
// An operator fetches its services from the host when it is made, and keeps them for its lifetime; without a host they
// stay null and every helper answers 4096 (encryptData, decryptData: false). Single-threaded.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "crypto/IEncryption.h"
#include "storage/IDBOperate.h"
#include "storage/StatusCodes.h"

namespace tovr {

struct DataBase;

class DataTableOperateBase {
 public:
  DataTableOperateBase();
  DataTableOperateBase(const DataTableOperateBase&) = delete;
  DataTableOperateBase& operator=(const DataTableOperateBase&) = delete;
  virtual ~DataTableOperateBase();  // slot 0; releases neither service

  // The slots that the manager drives. Results: an SQLite code or one of StatusCodes.h; 0 is success.
  virtual int getDbType();                      // slot 1: 2 for every group but the database information
  virtual int createTables() = 0;               // slot 2
  virtual int query(DataBase* record) = 0;      // slot 3
  virtual int insert(DataBase* record) = 0;     // slot 4
  virtual int deleteAll(DataBase* record) = 0;  // slot 5: ignores the record
  virtual int update(DataBase* record) = 0;     // slot 6

  // Stores the last key that `table` has issued in `*sequence`; 0 with `*sequence` unchanged when it issued none.
  int getSequence(const char* table, int* sequence);

  // The database file itself, through the host's connection (found, never created). 4096 without one.
  static int openDB(const std::string& path, const std::string& key);
  static int closeDB();
  static bool checkDB();        // whether "Coef_Info" can be read; leaves the statement to the next prepare or close
  static const char* errMsg();  // null without a connection

 protected:
  // Binds the parameters of the current statement or reads its current row. A result other than 0 ends the operation
  // with that code, its error text printed, the statement left to the next prepare.
  using StatementStep = std::function<int(IDBOperate&)>;

  // Logs and runs statements without parameters or results. Prints no error text.
  int exec(const std::string& sql);

  // One writing statement: prepare, bind, step, reset, finalize. REQUIRES: what `bind` binds outlives the call.
  // A failed bind is the result and nothing is stepped; all parameters are bound before that is decided, but inserting
  // a screen stops at the first failed bind, and updating one ignores them.
  int write(const std::string& sql, const StatementStep& bind);

  // A reading statement in two calls: prepare it, then run `row` for every row, or for the first only, and finalize.
  int prepare(const std::string& sql);
  int readRows(const StatementStep& row);
  int readFirstRow(const StatementStep& row);

  // Prints the connection's error text when `result` is not 0, and returns it.
  int report(int result);

  // The stored form of a payload (length prefix, DES) and back. False, with `out` untouched, on failure.
  bool encryptData(const void* data, unsigned int length, std::vector<unsigned char>& out);
  bool decryptData(const void* data, unsigned int length, std::vector<unsigned char>& out);
  // decryptData over a blob column of the current row.
  bool decryptColumn(int column, std::vector<unsigned char>& out);

  IDBOperate* dbOperate = nullptr;    // borrowed from the host
  IEncryption* encryption = nullptr;  // borrowed from the host

 private:
  int finalize();
};

// The length of a bound text or blob. The engine's own limit lies below 2 GiB, so a larger one is cut to a length
// that the engine refuses.
int byteLength(std::size_t size);

// The first result that is not 0, of binds made in order; 0 when all succeeded.
int firstFailure(std::initializer_list<int> results);

// Binds a text or a blob without a copy: it must live until the statement is finished.
int bindText(IDBOperate& db, int index, const std::string& text);
int bindBlob(IDBOperate& db, int index, const std::vector<unsigned char>& blob);

// A column's text up to its terminating zero; empty for NULL.
std::string columnText(IDBOperate& db, int column);

// A copy that a caller of the library may own: hosts release such buffers with delete[].
std::unique_ptr<unsigned char[]> newArrayOf(const std::vector<unsigned char>& bytes);

}  // namespace tovr
