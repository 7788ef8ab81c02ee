// The records that travel between host and library: one class per kind of row, made by IDBManager::createData and
// deleted by the host through the virtual destructor. Field order, types and defaults are part of the contract with
// hosts; so is the layout of std::string and std::vector: host and library need the same compiler family.
//
// Rectangles are cell indices with both edges inclusive; -1 means that the edge is not given. In memory the order is
// left, top, right, bottom; the columns of the tables have another, so map by name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/CompilerFamily.h"

namespace tovr {

// The codes that createData takes and that DataBase::type holds.
enum DataType : std::int32_t {
  kCoefData = 0,
  kLumChromaData = 1,
  kScreenInfoData = 2,
  kConfigData = 3,
  kDBInfo = 4,
  kCoefDataResult = 5,
  kScreenInfoDataResult = 6,
};

constexpr std::int32_t kEdgeNotGiven = -1;
constexpr std::int32_t kDataTypeNotGiven = 16;  // coeftype, datatype: no type given

struct DataBase {
  explicit DataBase(DataType recordType) : type(recordType) {}
  DataBase(const DataBase&) = default;
  DataBase(DataBase&&) = default;
  DataBase& operator=(const DataBase&) = default;
  DataBase& operator=(DataBase&&) = default;
  virtual ~DataBase() = default;

  std::int32_t type;    // a DataType; never changed once the record is made
  std::string version;  // text of the payload tables' "version" column: written, never read back
};

// A block of coefficient cells, row-major: row `top` first, each row from `left` to `right`.
struct CoefBuffer {
  std::int32_t databitwidth = 0;  // bytes per cell (the column of that name holds the same number)
  unsigned char* data = nullptr;  // not owned
  std::int32_t datasize = 0;      // bytes at `data`; inserting does not compare them with the rectangle's size
};
static_assert(sizeof(CoefBuffer) == 24, "tovrdatabaseservice: compile for 64 bits, without packed structures");

// One coefficient area and its block. What queryData leaves in coefBuffer.data belongs to the host: delete[] it.
struct CoefData : DataBase {
  CoefData() : DataBase(kCoefData) {}

  std::int32_t id = 0;
  std::int32_t screenid = 0;
  std::int32_t coefid = 0;
  std::string coeftablename;  // read only: rows are always written with "Coef"
  std::int32_t coeftype = kDataTypeNotGiven;
  std::int32_t areaIndex = 0;  // receives the stored area number when a row is read
  std::int32_t areaid = -1;    // is written as the area number; reading a row leaves it alone
  std::int32_t left = kEdgeNotGiven;
  std::int32_t top = kEdgeNotGiven;
  std::int32_t right = kEdgeNotGiven;
  std::int32_t bottom = kEdgeNotGiven;
  std::int32_t multilayersize = 0;
  std::vector<std::int32_t> multilayerlist;  // read back only when multilayersize is not 0
  std::string screenname;                    // finds the screen in databases of type 1; not a column of the area
  CoefBuffer coefBuffer;
};

// One luminance and chromaticity measurement.
struct LumChromaData : DataBase {
  LumChromaData() : DataBase(kLumChromaData) {}

  std::int32_t datatype = kDataTypeNotGiven;
  std::int32_t reserved1 = -1;  // not read
  std::int32_t left = kEdgeNotGiven;
  std::int32_t top = kEdgeNotGiven;
  std::int32_t right = kEdgeNotGiven;
  std::int32_t bottom = kEdgeNotGiven;
  std::uint64_t reserved2 = 0;    // not read
  unsigned char* data = nullptr;  // not owned
  std::uint32_t dataSize = 0;     // bytes at `data`
};

// One screen: a display and the cells it covers.
struct ScreenInfoData : DataBase {
  ScreenInfoData() : DataBase(kScreenInfoData) {}

  std::int32_t id = 0;
  std::int32_t dbid = 0;  // key of the "Attach_DB_List" row that the screen belongs to
  std::string screenname;
  std::int32_t areaid = -1;  // not stored; compared when an area is updated by its rectangle
  std::int32_t left = kEdgeNotGiven;
  std::int32_t top = kEdgeNotGiven;
  std::int32_t right = kEdgeNotGiven;
  std::int32_t bottom = kEdgeNotGiven;
};

// Generic data, one blob per data type. What queryData leaves in `data` was made with new[]: the host delete[]s it.
struct ConfigData : DataBase {
  ConfigData() : DataBase(kConfigData) {}

  std::uint64_t reserved1 = 0;      // not read
  std::uint64_t reserved2 = 0;      // set to 0 when a query fills the record
  unsigned char* data = nullptr;    // not owned
  std::uint32_t dataSize = 0;       // bytes at `data`
  std::uint32_t dataSizeUpper = 0;  // upper half of the size's 64-bit word: 0, not read
  std::int32_t datatype = kDataTypeNotGiven;
};

// The row that describes the database file itself.
struct DBInfo : DataBase {
  DBInfo() : DataBase(kDBInfo) {}

  std::int32_t id = 0;
  std::int32_t dbtype = 0;  // 0: screens are found by rectangle; 1: by name
  std::string dbname;
  std::string datastructversion;
  std::string softwareversion;
  std::string softwaretype;
  std::string dbversion;
};

// All stored areas, without their blocks.
struct CoefDataResult : DataBase {
  CoefDataResult() : DataBase(kCoefDataResult) {}

  std::vector<CoefData> coefs;
};

// All screens.
struct ScreenInfoDataResult : DataBase {
  ScreenInfoDataResult() : DataBase(kScreenInfoDataResult) {}

  std::vector<ScreenInfoData> screens;
};

}  // namespace tovr
