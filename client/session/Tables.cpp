#include "client/session/Tables.h"

#include <algorithm>

namespace tovrdb {

const std::vector<std::string> kTables = {"DB_Info",          "Attach_DB_List", "Screen_Info",
                                          kBlockTable,        "Coef_Info",      kMeasurementTable,
                                          "LumChromDataInfo", kDataTable,       "DataInfo"};

bool isTable(const std::string& name) { return std::find(kTables.begin(), kTables.end(), name) != kTables.end(); }

}  // namespace tovrdb
