#include "manager/RecordFactory.h"

namespace tovr {

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
