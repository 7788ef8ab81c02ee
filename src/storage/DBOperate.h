// The class behind "cpp.DBOperate": forwards every operation to the one Sqlite3DB it owns, and adds nothing.
#pragma once

#include <memory>

#include "platform/Sqlite3DB.h"
#include "plugin/IMessageHandler.h"
#include "storage/IDBOperate.h"

namespace tovr {

class DBOperate final : public IDBOperate, public lmx::IMessageHandler {
 public:
  DBOperate();

  int open(const char* path) override;
  int close() override;
  int setKey(const char* key, unsigned int length) override;
  int exec(const char* sql) override;
  int errCode() override;
  const char* errMsg() override;
  int prepare_v2(const char* sql, int length) override;
  int bind_int(int index, int value) override;
  int bind_int64(int index, std::int64_t value) override;
  int bind_double(int index, double value) override;
  int bind_text(int index, const char* text, int length, void (*destructor)(void*)) override;
  int bind_blob(int index, const void* data, int length, void (*destructor)(void*)) override;
  int bind_null(int index) override;
  int step() override;
  int reset() override;
  int finalize() override;
  int get_table(const char* sql, char*** result, int* rows, int* columns) override;
  void free_table(char** result) override;
  const void* column_blob(int column) override;
  int column_bytes(int column) override;
  int column_int(int column) override;
  double column_double(int column) override;
  const unsigned char* column_text(int column) override;

  int handleMessage(lmx::IMessage* message) override;

 private:
  std::unique_ptr<Sqlite3DB> db;  // never null; closes what is open when it goes
};

}  // namespace tovr
