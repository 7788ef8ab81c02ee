// The service "cpp.DBOperate": the one connection to the open database file. Owned by the host; everybody else
// borrows it and never deletes it.
//
// Hosts call by position: slot order is part of the contract. Append, never insert, never overload.
// Single-threaded, with at most one current statement: finish or abandon one before preparing the next.
// `int` results are SQLite result codes; 0 is success. While closed, after a failed open and without a statement,
// close, reset and finalize answer 0, the columns null or 0, everything else 21.
#pragma once

#include <cstdint>

namespace tovr {

// What step() answers besides an error.
constexpr int kStepRow = 100;   // a row is ready
constexpr int kStepDone = 101;  // the statement has finished

class IDBOperate {
 public:
  virtual ~IDBOperate() = default;  // slot 0

  // Opens or creates the file; closes what is open. `path`: narrow bytes, passed to the engine unchanged.
  virtual int open(const char* path) = 0;  // slot 1
  virtual int close() = 0;                 // slot 2: finalizes the current statement first
  // Gives the page key, `length` bytes. Succeeds with a wrong key too: only the first read proves it. On SQLCipher 4 it
  // reads the file and resets the busy timeout to 0: set yours afterwards.
  virtual int setKey(const char* key, unsigned int length) = 0;  // slot 3
  // Runs every statement of `sql`.
  virtual int exec(const char* sql) = 0;  // slot 4
  virtual int errCode() = 0;              // slot 5
  // English text of the most recent error; valid until the next call on the connection; never null.
  virtual const char* errMsg() = 0;  // slot 6

  // Compiles the first statement of `sql` (`length` bytes) and makes it the current one; finalizes the one before.
  virtual int prepare_v2(const char* sql, int length) = 0;  // slot 7
  // Parameters count from 1. Without a destructor (null) texts and blobs must stay valid until the statement is
  // reset or finalized; a null pointer binds NULL.
  virtual int bind_int(int index, int value) = 0;                                                 // slot 8
  virtual int bind_int64(int index, std::int64_t value) = 0;                                      // slot 9
  virtual int bind_double(int index, double value) = 0;                                           // slot 10
  virtual int bind_text(int index, const char* text, int length, void (*destructor)(void*)) = 0;  // slot 11
  virtual int bind_blob(int index, const void* data, int length, void (*destructor)(void*)) = 0;  // slot 12
  virtual int bind_null(int index) = 0;                                                           // slot 13
  virtual int step() = 0;                                                                         // slot 14
  virtual int reset() = 0;                                                                        // slot 15
  virtual int finalize() = 0;                                                                     // slot 16

  // Runs a query whole: `*result` gets (rows + 1) * columns texts, the first `columns` of them the column names; a
  // NULL value is a null pointer. On failure the three outputs are null, 0 and 0: hand `*result` to free_table in every
  // case.
  virtual int get_table(const char* sql, char*** result, int* rows, int* columns) = 0;  // slot 17
  virtual void free_table(char** result) = 0;                                           // slot 18

  // Columns of the current row count from 0; pointers are valid until the next step, reset or finalize.
  virtual const void* column_blob(int column) = 0;           // slot 19
  virtual int column_bytes(int column) = 0;                  // slot 20
  virtual int column_int(int column) = 0;                    // slot 21
  virtual double column_double(int column) = 0;              // slot 22
  virtual const unsigned char* column_text(int column) = 0;  // slot 23
};

}  // namespace tovr
