// The service "cpp.DBManager": opens, creates and checks database files; reads and writes records.
//
// Hosts call by position: slot order is part of the contract. Append, never insert, never overload.
// Single-threaded: every manager of a host shares one connection, so one call at a time, from one thread at a time.
// Results are status codes: 0, an SQLite result code, or one of storage/StatusCodes.h. Nothing is rolled back: an
// operation of several statements stops at the first that fails and leaves the earlier ones in place.
#pragma once

#include <string>

#include "manager/DataRecords.h"

namespace tovr {

class IDBManager {
 public:
  virtual ~IDBManager() = default;  // slot 0

  // Opens (or creates) the file at `path` (narrow bytes, passed on unchanged) with the page key `key`, and runs the
  // two PRAGMAs. With a wrong key the first read fails with 26; engines that read the file for a PRAGMA fail here.
  // Not 0: call closeDB at once. The file may be open; with an empty key, which answers 1, it is open without
  // encryption and every later call would write it in plain. 4096 without host or connection.
  virtual int openDB(std::string path, std::string key) = 0;  // slot 1

  // Closes the file; 0 if none is open, too. 4096 without host or connection.
  virtual int closeDB() = 0;  // slot 2

  // Creates those of the nine tables that do not exist yet, in five groups; stops at the first group that fails.
  // REQUIRES: openDB succeeded.
  virtual int createTables() = 0;  // slot 3

  // 0: areas are placed by rectangle; 1: by screen name; 2: the file does not tell.
  virtual int getDBType() = 0;  // slot 4

  // A new record with its defaults, owned by the caller, deleted through its virtual destructor.
  // REQUIRES: `type` is a DataType, 0 to 6; any other ends the process. Throws std::bad_alloc.
  virtual DataBase* createData(int type) = 0;  // slot 5

  // Fills `record`:
  // - CoefData: the cells of its rectangle, cut out of the stored area that holds it, in a new buffer made with new[]
  //   that the caller owns; the old pointer is overwritten, not freed
  // - ConfigData: the first blob of its data type, in a new buffer as above
  // - DBInfo: the first row
  // - CoefDataResult: every stored area, without blocks
  // - ScreenInfoDataResult: every screen
  //
  // LumChromaData and records of an unknown type: 0, nothing happens. ScreenInfoData: 4096. Null: 4096.
  // A CoefData is unchanged on failure. No query fills `version`.
  // Throws std::invalid_argument or std::out_of_range if a screen's row, which CoefData and ScreenInfoDataResult read,
  // holds something else than a number.
  virtual int queryData(DataBase* record) = 0;  // slot 6

  // Stores `record` (CoefData, LumChromaData, ScreenInfoData, ConfigData, DBInfo); buffers stay the caller's.
  // A CoefData receives the keys of its screen and its block, and its own (`id`) only if a stored area is taken over;
  // no other record receives a key. Sizes are not checked: `datasize` bytes are stored whatever the rectangle. Result
  // records and unknown types: 0, nothing happens. Null: 4096. Throws as queryData, for a CoefData.
  virtual int insertData(DataBase* record) = 0;  // slot 7

  // Clears ALL rows of the tables behind the record's type, whatever the record holds. Screens cannot be cleared
  // (code 1); generic data is not (0). Unknown types: 4104. Null: 4096.
  virtual int deleteData(DataBase* record) = 0;  // slot 8

  // Rewrites the rows of a CoefData or ScreenInfoData (by `id`). LumChromaData, ConfigData, DBInfo,
  // ScreenInfoDataResult and unknown types: 0, nothing happens. CoefDataResult: 4096. Null: 4096. Throws and checks
  // sizes as insertData.
  virtual int updateData(DataBase* record) = 0;  // slot 9

  // The connection's last error text, valid until the next call on the connection; null without a connection.
  virtual const char* errMsg() = 0;  // slot 10

  // Whether `path` opens with the built-in key and holds the table "Coef_Info". Replaces what is open, closes after.
  virtual bool checkDB(std::string path) = 0;  // slot 11
};

}  // namespace tovr
