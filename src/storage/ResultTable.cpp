#include "storage/ResultTable.h"

#include <cstdio>

#include "storage/StatusCodes.h"

namespace tovr {

ResultTable::ResultTable(IDBOperate& db, const std::string& sql)
    : db_(db), code_(db.get_table(sql.c_str(), &cells_, &rows_, &columns_)) {
  if (code_ != kOk) rows_ = 0;
}

ResultTable::~ResultTable() {
  if (!isFreed_) db_.free_table(cells_);
}

int ResultTable::free() {
  db_.free_table(cells_);
  isFreed_ = true;
  rows_ = columns_ = 0;
  return code_;
}

const char* ResultTable::cell(int row, int column) const {
  if (row > rows_ || column >= columns_) return nullptr;
  return cells_[std::ptrdiff_t{row} * columns_ + column];
}

std::string ResultTable::text(int row, int column) const {
  const char* value = cell(row, column);
  return value != nullptr ? value : "";
}

void ResultTable::print(int row, int columns) const {
  std::string line;
  for (int column = 0; column < columns; ++column) {
    if (column > 0) line += '|';
    line += text(row, column);
  }
  line += " \n";
  std::fputs(line.c_str(), stdout);
}

}  // namespace tovr
