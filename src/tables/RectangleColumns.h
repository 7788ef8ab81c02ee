// A rectangle has two orders: left, top, right, bottom in the records; top, left, bottom, right in the columns. These
// are the only places that map one to the other, by name.
#pragma once

#include <array>
#include <cstdint>

#include "storage/IDBOperate.h"
#include "storage/StatusCodes.h"

namespace tovr {

template <class Record>
std::array<std::int32_t, 4> edgesInColumnOrder(const Record& record) {
  return {record.top, record.left, record.bottom, record.right};
}

// Binds the four edges as the parameters `first` to `first` + 3, all of them. Returns the first failure.
template <class Record>
int bindRectangle(IDBOperate& db, int first, const Record& record) {
  int result = kOk;
  for (const std::int32_t edge : edgesInColumnOrder(record)) {
    const int bound = db.bind_int(first++, edge);
    if (result == kOk) result = bound;
  }
  return result;
}

// Reads the four edges from the columns `first` to `first` + 3; `number` gives a column's int.
template <class Record, class Number>
void readRectangle(Record& record, int first, const Number& number) {
  record.top = number(first);
  record.left = number(first + 1);
  record.bottom = number(first + 2);
  record.right = number(first + 3);
}

}  // namespace tovr
