#include "manager/RecordFactory.h"

#include <cstddef>

namespace tovr {
namespace {

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"  // every supported compiler defines it for these records
#endif

// Hosts reach the fields by position. Texts and lists have the size that the compiler family gives them.
constexpr std::size_t kText = sizeof(std::string);
constexpr std::size_t kFields = 16 + kText;  // the first field behind DataBase's: table pointer, type, version

static_assert(offsetof(DataBase, type) == 8 && offsetof(DataBase, version) == 16 && sizeof(DataBase) == kFields);

static_assert(offsetof(CoefBuffer, databitwidth) == 0 && offsetof(CoefBuffer, data) == 8 &&
              offsetof(CoefBuffer, datasize) == 16 && sizeof(CoefBuffer) == 24);

static_assert(offsetof(CoefData, id) == kFields && offsetof(CoefData, screenid) == kFields + 4 &&
              offsetof(CoefData, coefid) == kFields + 8 && offsetof(CoefData, coeftablename) == kFields + 16);
static_assert(offsetof(CoefData, coeftype) == kFields + 16 + kText &&
              offsetof(CoefData, areaIndex) == offsetof(CoefData, coeftype) + 4 &&
              offsetof(CoefData, areaid) == offsetof(CoefData, coeftype) + 8 &&
              offsetof(CoefData, left) == offsetof(CoefData, coeftype) + 12 &&
              offsetof(CoefData, top) == offsetof(CoefData, coeftype) + 16 &&
              offsetof(CoefData, right) == offsetof(CoefData, coeftype) + 20 &&
              offsetof(CoefData, bottom) == offsetof(CoefData, coeftype) + 24 &&
              offsetof(CoefData, multilayersize) == offsetof(CoefData, coeftype) + 28 &&
              offsetof(CoefData, multilayerlist) == offsetof(CoefData, coeftype) + 32);
static_assert(offsetof(CoefData, screenname) ==
                  offsetof(CoefData, multilayerlist) + sizeof(std::vector<std::int32_t>) &&
              offsetof(CoefData, coefBuffer) == offsetof(CoefData, screenname) + kText);

static_assert(offsetof(LumChromaData, datatype) == kFields && offsetof(LumChromaData, left) == kFields + 8 &&
              offsetof(LumChromaData, top) == kFields + 12 && offsetof(LumChromaData, right) == kFields + 16 &&
              offsetof(LumChromaData, bottom) == kFields + 20 && offsetof(LumChromaData, reserved2) == kFields + 24 &&
              offsetof(LumChromaData, data) == kFields + 32 && offsetof(LumChromaData, dataSize) == kFields + 40);

static_assert(offsetof(ScreenInfoData, id) == kFields && offsetof(ScreenInfoData, dbid) == kFields + 4 &&
              offsetof(ScreenInfoData, screenname) == kFields + 8 &&
              offsetof(ScreenInfoData, areaid) == kFields + 8 + kText &&
              offsetof(ScreenInfoData, left) == kFields + 12 + kText &&
              offsetof(ScreenInfoData, top) == kFields + 16 + kText &&
              offsetof(ScreenInfoData, right) == kFields + 20 + kText &&
              offsetof(ScreenInfoData, bottom) == kFields + 24 + kText);

static_assert(offsetof(ConfigData, reserved1) == kFields && offsetof(ConfigData, reserved2) == kFields + 8 &&
              offsetof(ConfigData, data) == kFields + 16 && offsetof(ConfigData, dataSize) == kFields + 24 &&
              offsetof(ConfigData, datatype) == kFields + 32);

static_assert(offsetof(DBInfo, id) == kFields && offsetof(DBInfo, dbtype) == kFields + 4 &&
              offsetof(DBInfo, dbname) == kFields + 8 && offsetof(DBInfo, datastructversion) == kFields + 8 + kText &&
              offsetof(DBInfo, softwareversion) == kFields + 8 + 2 * kText &&
              offsetof(DBInfo, softwaretype) == kFields + 8 + 3 * kText &&
              offsetof(DBInfo, dbversion) == kFields + 8 + 4 * kText);

static_assert(offsetof(CoefDataResult, coefs) == kFields && offsetof(ScreenInfoDataResult, screens) == kFields);

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

}  // namespace

std::unique_ptr<DataBase> makeRecord(int type) {
  switch (type) {
    case kCoefData:
      return std::make_unique<CoefData>();
    case kLumChromaData:
      return std::make_unique<LumChromaData>();
    case kScreenInfoData:
      return std::make_unique<ScreenInfoData>();
    case kConfigData:
      return std::make_unique<ConfigData>();
    case kDBInfo:
      return std::make_unique<DBInfo>();
    case kCoefDataResult:
      return std::make_unique<CoefDataResult>();
    case kScreenInfoDataResult:
      return std::make_unique<ScreenInfoDataResult>();
    default:
      return nullptr;
  }
}

}  // namespace tovr
