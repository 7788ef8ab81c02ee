// A rectangle has two orders: left, top, right, bottom in the records; top, left, bottom, right in the columns. These
// are the only places that map one to the other, by name.
#pragma once

#include "storage/IDBOperate.h"
#include "storage/StatusCodes.h"

namespace tovr {

// Binds the four edges as the parameters `first` to `first` + 3. Stops at the first bind that fails.
template <class Record>
int bindRectangle(IDBOperate& db, int first, const Record& record) {
  int result = db.bind_int(first, record.top);
  if (result == kOk) result = db.bind_int(first + 1, record.left);
  if (result == kOk) result = db.bind_int(first + 2, record.bottom);
  if (result == kOk) result = db.bind_int(first + 3, record.right);
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
