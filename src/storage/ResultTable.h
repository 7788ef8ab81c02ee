// The owned result of IDBOperate::get_table: freed once, on every path. Row 0 holds the column names.
#pragma once

#include <string>

#include "storage/IDBOperate.h"

namespace tovr {

class ResultTable {
 public:
  // Runs `sql`. REQUIRES: `db` outlives the table.
  ResultTable(IDBOperate& db, const std::string& sql);
  ResultTable(const ResultTable&) = delete;
  ResultTable& operator=(const ResultTable&) = delete;
  ~ResultTable();

  int code() const { return code_; }  // the result of get_table
  int free();                         // frees the table before its scope ends, and returns code(); no cells are left
  int rows() const { return rows_; }  // data rows, the first of them is row 1; 0 when get_table failed

  // Null for NULL and for a column that the table does not have.
  const char* cell(int row, int column) const;
  // The same; empty instead of null.
  std::string text(int row, int column) const;

  // Writes the row's first `columns` values to standard output, "|" between them, a blank and a newline at the end.
  void print(int row, int columns) const;

 private:
  IDBOperate& db_;
  char** cells_ = nullptr;
  int rows_ = 0;
  int columns_ = 0;
  int code_;
  bool isFreed_ = false;
};

}  // namespace tovr
