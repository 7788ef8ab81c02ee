// Makes the records that the manager hands to hosts.
#pragma once

#include <memory>

#include "manager/DataRecords.h"

namespace tovr {

// A record of that DataType with its defaults; null for any other code. Throws std::bad_alloc.
std::unique_ptr<DataBase> makeRecord(int type);

}  // namespace tovr
