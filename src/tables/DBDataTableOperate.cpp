#include "tables/DBDataTableOperate.h"

#include "manager/DataRecords.h"
#include "tables/Schema.h"

namespace tovr {
namespace {

constexpr char kSelectType[] = "select dbtype from DB_Info";
constexpr char kSelectInfo[] = "select * from DB_Info";
constexpr char kInsertInfo[] =
    "insert into DB_Info(dbname, dbtype, datastructversion, softwareversion, softwaretype, dbversion, ctime, mtime) "
    "values (?,?,?,?,?,?, datetime('now', 'localtime'), datetime('now', 'localtime'))";
constexpr char kInsertAttached[] =
    "insert into Attach_DB_List(dbname, ctime, mtime) "
    "values (?, datetime('now', 'localtime'), datetime('now', 'localtime'))";

}  // namespace

int DBDataTableOperate::getDbType() {
  int type = kUnknownDatabaseType;
  if (prepare(kSelectType) != kOk) return type;
  readFirstRow([&](IDBOperate& db) {
    type = db.column_int(0);
    return kOk;
  });
  return type;
}

int DBDataTableOperate::createTables() {
  const int result = exec(createDBInfo(table::kDBInfo));
  return result == kOk ? exec(createAttachDBList(table::kAttachDBList)) : result;
}

int DBDataTableOperate::query(DataBase* record) {
  auto* info = dynamic_cast<DBInfo*>(record);
  if (info == nullptr) return kInvalidRecord;
  const int result = prepare(kSelectInfo);
  if (result != kOk) return result;
  return readFirstRow([&](IDBOperate& db) {
    info->id = db.column_int(0);
    info->dbname = columnText(db, 1);
    info->dbtype = db.column_int(2);
    info->datastructversion = columnText(db, 3);
    info->softwareversion = columnText(db, 4);
    info->softwaretype = columnText(db, 5);
    info->dbversion = columnText(db, 6);
    return kOk;
  });
}

int DBDataTableOperate::insert(DataBase* record) {
  if (record == nullptr) return kNoRecord;
  const auto* info = dynamic_cast<const DBInfo*>(record);
  if (info == nullptr) return kInvalidRecord;
  const int result = insertInfo(*info);
  return result == kOk ? insertAttached(*info) : result;
}

int DBDataTableOperate::insertInfo(const DBInfo& info) {
  return write(kInsertInfo, [&](IDBOperate& db) {
    return firstFailure({bindText(db, 1, info.dbname), db.bind_int(2, info.dbtype),
                         bindText(db, 3, info.datastructversion), bindText(db, 4, info.softwareversion),
                         bindText(db, 5, info.softwaretype), bindText(db, 6, info.dbversion)});
  });
}

int DBDataTableOperate::insertAttached(const DBInfo& info) {
  return write(kInsertAttached, [&](IDBOperate& db) { return bindText(db, 1, info.dbname); });
}

int DBDataTableOperate::deleteAll(DataBase* /*record*/) {
  const int result = exec(clearSpaced(table::kDBInfo));
  return result == kOk ? exec(clearSpaced(table::kAttachDBList)) : result;
}

int DBDataTableOperate::update(DataBase* /*record*/) { return kOk; }

}  // namespace tovr
