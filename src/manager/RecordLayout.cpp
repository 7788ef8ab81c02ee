// Hosts reach the fields of records by position: this file compiles only where each one lies where hosts of 0.1.0
// expect it. A change here is another soname, and another "version" of pluginfo. Texts and lists have the size that the
// compiler family gives them.
#include <cstddef>

#include "manager/DataRecords.h"

#if defined(__GNUC__) || defined(__clang__)
#pragma GCC diagnostic ignored "-Winvalid-offsetof"  // every supported compiler defines it for these records
#endif

#define TOVR_FIELD(record, field, offset) static_assert(offsetof(record, field) == (offset))
#define TOVR_SIZE(record, size) static_assert(sizeof(record) == (size))

namespace tovr {
namespace {

constexpr std::size_t kText = sizeof(std::string);
constexpr std::size_t kList = sizeof(std::vector<std::int32_t>);
constexpr std::size_t kFields = 16 + kText;  // the first field behind DataBase's: table pointer, type, version

TOVR_FIELD(DataBase, type, 8);
TOVR_FIELD(DataBase, version, 16);
TOVR_SIZE(DataBase, kFields);

TOVR_FIELD(CoefBuffer, databitwidth, 0);
TOVR_FIELD(CoefBuffer, data, 8);
TOVR_FIELD(CoefBuffer, datasize, 16);
TOVR_SIZE(CoefBuffer, 24);

TOVR_FIELD(CoefData, id, kFields);
TOVR_FIELD(CoefData, screenid, kFields + 4);
TOVR_FIELD(CoefData, coefid, kFields + 8);
TOVR_FIELD(CoefData, coeftablename, kFields + 16);
TOVR_FIELD(CoefData, coeftype, kFields + 16 + kText);
TOVR_FIELD(CoefData, areaIndex, kFields + 20 + kText);
TOVR_FIELD(CoefData, areaid, kFields + 24 + kText);
TOVR_FIELD(CoefData, left, kFields + 28 + kText);
TOVR_FIELD(CoefData, top, kFields + 32 + kText);
TOVR_FIELD(CoefData, right, kFields + 36 + kText);
TOVR_FIELD(CoefData, bottom, kFields + 40 + kText);
TOVR_FIELD(CoefData, multilayersize, kFields + 44 + kText);
TOVR_FIELD(CoefData, multilayerlist, kFields + 48 + kText);
TOVR_FIELD(CoefData, screenname, kFields + 48 + kText + kList);
TOVR_FIELD(CoefData, coefBuffer, kFields + 48 + kText + kList + kText);
TOVR_SIZE(CoefData, kFields + 72 + kText + kList + kText);

TOVR_FIELD(LumChromaData, datatype, kFields);
TOVR_FIELD(LumChromaData, reserved1, kFields + 4);
TOVR_FIELD(LumChromaData, left, kFields + 8);
TOVR_FIELD(LumChromaData, top, kFields + 12);
TOVR_FIELD(LumChromaData, right, kFields + 16);
TOVR_FIELD(LumChromaData, bottom, kFields + 20);
TOVR_FIELD(LumChromaData, reserved2, kFields + 24);
TOVR_FIELD(LumChromaData, data, kFields + 32);
TOVR_FIELD(LumChromaData, dataSize, kFields + 40);
TOVR_SIZE(LumChromaData, kFields + 48);

TOVR_FIELD(ScreenInfoData, id, kFields);
TOVR_FIELD(ScreenInfoData, dbid, kFields + 4);
TOVR_FIELD(ScreenInfoData, screenname, kFields + 8);
TOVR_FIELD(ScreenInfoData, areaid, kFields + 8 + kText);
TOVR_FIELD(ScreenInfoData, left, kFields + 12 + kText);
TOVR_FIELD(ScreenInfoData, top, kFields + 16 + kText);
TOVR_FIELD(ScreenInfoData, right, kFields + 20 + kText);
TOVR_FIELD(ScreenInfoData, bottom, kFields + 24 + kText);
TOVR_SIZE(ScreenInfoData, kFields + 32 + kText);

TOVR_FIELD(ConfigData, reserved1, kFields);
TOVR_FIELD(ConfigData, reserved2, kFields + 8);
TOVR_FIELD(ConfigData, data, kFields + 16);
TOVR_FIELD(ConfigData, dataSize, kFields + 24);
TOVR_FIELD(ConfigData, dataSizeUpper, kFields + 28);
TOVR_FIELD(ConfigData, datatype, kFields + 32);
TOVR_SIZE(ConfigData, kFields + 40);

TOVR_FIELD(DBInfo, id, kFields);
TOVR_FIELD(DBInfo, dbtype, kFields + 4);
TOVR_FIELD(DBInfo, dbname, kFields + 8);
TOVR_FIELD(DBInfo, datastructversion, kFields + 8 + kText);
TOVR_FIELD(DBInfo, softwareversion, kFields + 8 + 2 * kText);
TOVR_FIELD(DBInfo, softwaretype, kFields + 8 + 3 * kText);
TOVR_FIELD(DBInfo, dbversion, kFields + 8 + 4 * kText);
TOVR_SIZE(DBInfo, kFields + 8 + 5 * kText);

TOVR_FIELD(CoefDataResult, coefs, kFields);
TOVR_SIZE(CoefDataResult, kFields + kList);

TOVR_FIELD(ScreenInfoDataResult, screens, kFields);
TOVR_SIZE(ScreenInfoDataResult, kFields + kList);

}  // namespace
}  // namespace tovr
