#include "tables/ScreenInfoDataTableOperate.h"

#include "manager/DataRecords.h"
#include "storage/NumberText.h"
#include "storage/ResultTable.h"
#include "tables/RectangleColumns.h"
#include "tables/Schema.h"

namespace tovr {
namespace {

constexpr char kSelect[] = "select * from Screen_Info";
constexpr char kInsert[] =
    "insert into Screen_Info(dbid, screenname, top, left, bottom,              right, ctime, mtime) "
    "values (?, ?, ?, ?, ?, ?, datetime('now','localtime'), datetime('now','localtime'))";
constexpr char kClear[] = "delete * from Screen_Info";  // not valid SQL: hosts know that screens are never cleared

constexpr int kPrintedColumns = 7;  // all but the two times

std::string updateStatement(int id) {
  return "update Screen_Info set screenname = ?, top = ?, left = ?, bottom = ?, right = ? where id = " +
         std::to_string(id);
}

ScreenInfoData screenOf(const ResultTable& rows, int row) {
  const auto number = [&](int column) { return intOrThrow(rows.cell(row, column)); };
  ScreenInfoData screen;
  screen.id = number(0);
  screen.dbid = number(1);
  screen.screenname = rows.text(row, 2);
  readRectangle(screen, 3, number);
  return screen;
}

}  // namespace

int ScreenInfoDataTableOperate::createTables() {
  return exec(createScreenInfo(table::kScreenInfo, table::kAttachDBList));
}

int ScreenInfoDataTableOperate::query(DataBase* record) {
  auto* result = dynamic_cast<ScreenInfoDataResult*>(record);
  if (result == nullptr) return kInvalidRecord;
  if (dbOperate == nullptr) return kNoConnection;
  const ResultTable rows(*dbOperate, kSelect);
  if (rows.code() != kOk) return rows.code();
  result->screens.clear();
  for (int row = 1; row <= rows.rows(); ++row) {
    rows.print(row, kPrintedColumns);
    result->screens.push_back(screenOf(rows, row));
  }
  return kOk;
}

int ScreenInfoDataTableOperate::insert(DataBase* record) {
  const auto* screen = dynamic_cast<const ScreenInfoData*>(record);
  if (screen == nullptr) return kInvalidRecord;
  return write(kInsert, [&](IDBOperate& db) {
    int parameter = 2;
    int result = db.bind_int(1, screen->dbid);
    if (result == kOk) result = bindText(db, parameter, screen->screenname);
    for (const std::int32_t edge : edgesInColumnOrder(*screen)) {
      if (result == kOk) result = db.bind_int(++parameter, edge);
    }
    return result;
  });
}

int ScreenInfoDataTableOperate::deleteAll(DataBase* /*record*/) { return exec(kClear); }

int ScreenInfoDataTableOperate::update(DataBase* record) {
  const auto* screen = dynamic_cast<const ScreenInfoData*>(record);
  if (screen == nullptr) return kInvalidRecord;
  // Unlike insert, an update does not look at what the binds answer.
  return write(updateStatement(screen->id), [&](IDBOperate& db) {
    int parameter = 1;
    bindText(db, parameter, screen->screenname);
    for (const std::int32_t edge : edgesInColumnOrder(*screen)) db.bind_int(++parameter, edge);
    return kOk;
  });
}

}  // namespace tovr
