// The nine tables of a database file, in the order in which rows may refer to one another.
#pragma once

#include <string>
#include <vector>

namespace tovrdb {

extern const std::vector<std::string> kTables;
bool isTable(const std::string& name);

// Those with enciphered payloads, in a column of one name.
constexpr char kBlockTable[] = "Coef";
constexpr char kMeasurementTable[] = "LumChromData";
constexpr char kDataTable[] = "Data";
constexpr const char* kPayloadTables[] = {kBlockTable, kMeasurementTable, kDataTable};
constexpr char kPayloadColumn[] = "data";

}  // namespace tovrdb
