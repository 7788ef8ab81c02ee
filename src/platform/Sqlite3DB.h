// One connection to an encrypted SQLite file and its one current statement, on SQLCipher's C interface.
//
// Stands in for a closed platform class: no other methods than these. Results are SQLite's own codes. Every method is
// safe while closed, after a failed open and without a statement, and then answers what SQLite answers to a null
// handle: close, reset and finalize 0, the columns null or 0, all others 21 (SQLITE_MISUSE).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace tovr {

class Sqlite3DB {
 public:
  Sqlite3DB();
  ~Sqlite3DB();
  Sqlite3DB(const Sqlite3DB&) = delete;
  Sqlite3DB& operator=(const Sqlite3DB&) = delete;

  // Closes what is open first. On failure errMsg() tells why, and nothing else works until the next open. Fails with
  // 1, and creates no file, where the process has bound sqlite3_* to a library without page encryption.
  int open(const char* path);
  // Succeeds with any key; a wrong one fails at the first read, with 26. On SQLCipher 4.x the file is read here
  // already, and one that 3.x wrote is then read and written as 3.x does.
  int setKey(const char* key, unsigned int length);
  // Finalizes the current statement first. Then errCode() is 21 and errMsg() says that no file is open.
  int close();

  int exec(const char* sql);
  int errCode();
  const char* errMsg();

  int prepare_v2(const char* sql, int length);  // finalizes the statement before
  int bind_int(int index, int value);
  int bind_int64(int index, std::int64_t value);
  int bind_double(int index, double value);
  int bind_text(int index, const char* text, int length, void (*destructor)(void*));
  int bind_blob(int index, const void* data, int length, void (*destructor)(void*));
  int bind_null(int index);
  int step();
  int reset();
  int finalize();

  // Writes all three outputs: null, 0 and 0 on failure. 21 without a `result`; the two numbers may be left out (null).
  int get_table(const char* sql, char*** result, int* rows, int* columns);
  void free_table(char** result);

  const void* column_blob(int column);
  int column_bytes(int column);
  int column_int(int column);
  double column_double(int column);
  const unsigned char* column_text(int column);

 private:
  struct CloseConnection {
    void operator()(sqlite3* connection) const;
  };
  struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const;
  };

  bool isOpen() const;
  int connect();
  int keyConnection(const char* key, int length);
  bool opensWithKey();
  int keyOlderFile(const char* key, int length);

  std::unique_ptr<sqlite3, CloseConnection> connection_;
  std::unique_ptr<sqlite3_stmt, FinalizeStatement> statement_;  // destroyed before its connection
  int openResult_;                                              // of the last open; 21 while closed
  std::string path_;                                            // of the last open
};

}  // namespace tovr
