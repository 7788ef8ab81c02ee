#include "manager/DBManager.h"

#include <cstdlib>

#include "manager/RecordFactory.h"
#include "storage/Log.h"
#include "storage/StatusCodes.h"
#include "tables/DBDataTableOperate.h"
#include "tables/DataTableOperate.h"
#include "tables/LumChromaDataTableOperate.h"

namespace tovr {
namespace {

constexpr char kCheckKey[] = "brimstoquelvard";  // checkDB's page key, and nobody else's

struct TableGroup {
  const char* progress;
  DataType key;
};

// In the order that the foreign keys demand.
constexpr TableGroup kTableGroups[] = {
    {"start create DB Table", kDBInfo},           {"start create Screen_Info Table", kScreenInfoData},
    {"start create Coef_Info Table", kCoefData},  {"start create LumChromDataInfo Table", kLumChromaData},
    {"start create DataInfo Table", kConfigData},
};

}  // namespace

DBManager::DBManager() {
  operators[kCoefData] = std::make_shared<CoefDataTableOperate>();
  operators[kLumChromaData] = std::make_shared<LumChromaDataTableOperate>();
  operators[kScreenInfoData] = std::make_shared<ScreenInfoDataTableOperate>();
  operators[kConfigData] = std::make_shared<DataTableOperate>();
  operators[kDBInfo] = std::make_shared<DBDataTableOperate>();
  operators[kCoefDataResult] = std::make_shared<CoefDataTableOperate>();  // instances of their own, not shared
  operators[kScreenInfoDataResult] = std::make_shared<ScreenInfoDataTableOperate>();
}

int DBManager::openDB(std::string path, std::string key) { return DataTableOperateBase::openDB(path, key); }

int DBManager::closeDB() { return DataTableOperateBase::closeDB(); }

int DBManager::createTables() {
  for (const TableGroup& group : kTableGroups) {
    logLine(group.progress);
    DataTableOperateBase* tables = findOperator(group.key);
    const int result = tables != nullptr ? tables->createTables() : kNoOperator;
    if (result != kOk) return result;
  }
  return kOk;
}

int DBManager::getDBType() {
  DataTableOperateBase* information = findOperator(kDBInfo);
  return information != nullptr ? information->getDbType() : kUnknownDatabaseType;
}

DataBase* DBManager::createData(int type) {
  std::unique_ptr<DataBase> record = makeRecord(type);
  if (record == nullptr) std::abort();  // a code outside 0 to 6 ends the process, on every compiler
  return record.release();
}

int DBManager::queryData(DataBase* record) {
  if (record == nullptr) return kInvalidRecord;
  switch (record->type) {
    case kCoefData:
      if (auto* coef = dynamic_cast<CoefData*>(record)) return flows().query(*coef, getDBType());
      return kInvalidRecord;
    case kScreenInfoData:
    case kConfigData:
    case kDBInfo:
    case kCoefDataResult:
    case kScreenInfoDataResult:
      return operators[record->type]->query(record);
    default:  // measurements are not read through the manager
      return kOk;
  }
}

int DBManager::insertData(DataBase* record) {
  if (record == nullptr) return kInvalidRecord;
  switch (record->type) {
    case kCoefData:
      if (auto* coef = dynamic_cast<CoefData*>(record)) return flows().insert(*coef, getDBType());
      return kInvalidRecord;
    case kLumChromaData:
    case kScreenInfoData:
    case kConfigData:
    case kDBInfo:
      return operators[record->type]->insert(record);
    default:
      return kOk;
  }
}

int DBManager::deleteData(DataBase* record) {
  if (record == nullptr) return kInvalidRecord;
  DataTableOperateBase* tables = findOperator(record->type);
  return tables != nullptr ? tables->deleteAll(record) : kNoOperator;
}

int DBManager::updateData(DataBase* record) {
  if (record == nullptr) return kInvalidRecord;
  switch (record->type) {
    case kCoefData:
      if (auto* coef = dynamic_cast<CoefData*>(record)) return flows().update(*coef, getDBType());
      return kInvalidRecord;
    case kScreenInfoData:
    case kConfigData:
    case kCoefDataResult:
      return operators[record->type]->update(record);
    default:
      return kOk;
  }
}

const char* DBManager::errMsg() { return DataTableOperateBase::errMsg(); }

bool DBManager::checkDB(std::string path) {
  if (openDB(std::move(path), kCheckKey) != kOk) return false;
  const bool checked = DataTableOperateBase::checkDB();
  closeDB();
  return checked;
}

DataTableOperateBase* DBManager::findOperator(int key) const {
  const auto found = operators.find(key);
  return found != operators.end() ? found->second.get() : nullptr;
}

CoefFlows DBManager::flows() {
  // The constructor put these very classes under these keys.
  return CoefFlows({static_cast<CoefDataTableOperate&>(*operators[kCoefData]),
                    static_cast<ScreenInfoDataTableOperate&>(*operators[kScreenInfoData]), *operators[kCoefDataResult],
                    *operators[kScreenInfoDataResult]});
}

}  // namespace tovr
