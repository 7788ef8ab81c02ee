#include "tables/DataTableOperate.h"

#include "crypto/WipedBuffer.h"
#include "manager/DataRecords.h"
#include "storage/NumberText.h"
#include "storage/ResultTable.h"
#include "tables/Schema.h"

namespace tovr {
namespace {

constexpr char kSelectInfo[] = "select * from DataInfo where datatype = ";
constexpr char kDeleteInfo[] = "delete from DataInfo where datatype = ";
constexpr char kInsertInfo[] =
    "insert into DataInfo(screenid, dataid, datatype, ctime, mtime) "
    "values(?,?,?,datetime('now', 'localtime'), datetime('now', 'localtime'))";
constexpr char kSelectData[] = "select * from Data where id = ";
constexpr char kDeleteData[] = "delete from Data where id = ";
constexpr char kInsertData[] = "insert into Data(data, version) values(?,?)";

int bindNothing(IDBOperate& /*db*/) { return kOk; }

}  // namespace

int DataTableOperate::createTables() {
  const int result = exec(createData(table::kData));
  return result == kOk ? exec(createDataInfo(table::kDataInfo, table::kScreenInfo, table::kData)) : result;
}

int DataTableOperate::query(DataBase* record) {
  if (record == nullptr) return kNoRecord;
  auto* config = dynamic_cast<ConfigData*>(record);
  if (config == nullptr) return kInvalidRecord;
  const int result = lookupInfo(*config);
  return result == kOk ? readDataRow(*config) : result;
}

int DataTableOperate::insert(DataBase* record) {
  if (record == nullptr) return kNoRecord;
  const auto* config = dynamic_cast<const ConfigData*>(record);
  if (config == nullptr) return kInvalidRecord;
  if (lookupInfo(*config) == kOk) {  // what the deletes answer does not stop the insertion
    deleteInfoByType(config->datatype);
    for (const int id : dataIds) deleteDataById(id);
  }
  int dataid = 0;
  int screenid = 0;
  int result = insertDataRow(*config);
  if (result == kOk) result = getSequence(table::kData, &dataid);
  if (result == kOk) result = getSequence(table::kScreenInfo, &screenid);
  return result == kOk ? insertInfoRow(*config, std::to_string(screenid), dataid) : result;
}

int DataTableOperate::deleteAll(DataBase* /*record*/) { return kOk; }

int DataTableOperate::update(DataBase* /*record*/) { return kOk; }

int DataTableOperate::lookupInfo(const ConfigData& record) {
  if (dbOperate == nullptr) return kNoConnection;
  dataIds.clear();
  infoIds.clear();
  ResultTable found(*dbOperate, kSelectInfo + std::to_string(record.datatype));
  for (int row = 1; row <= found.rows(); ++row) {
    dataIds.push_back(intOrZero(found.cell(row, 2)));
    infoIds.push_back(intOrZero(found.cell(row, 0)));
  }
  return report(found.free());
}

int DataTableOperate::deleteInfoByType(int datatype) {
  return write(kDeleteInfo + std::to_string(datatype), bindNothing);
}

int DataTableOperate::deleteDataById(int id) { return write(kDeleteData + std::to_string(id), bindNothing); }

int DataTableOperate::insertDataRow(const ConfigData& record) {
  std::vector<unsigned char> enciphered;
  return write(kInsertData, [&](IDBOperate& db) {
    if (!encryptData(record.data, record.dataSize, enciphered)) return kCipherFailed;
    return firstFailure({bindBlob(db, 1, enciphered), bindText(db, 2, record.version)});
  });
}

int DataTableOperate::insertInfoRow(const ConfigData& record, const std::string& screenid, int dataid) {
  return write(kInsertInfo, [&](IDBOperate& db) {
    return firstFailure({bindText(db, 1, screenid), db.bind_int(2, dataid), db.bind_int(3, record.datatype)});
  });
}

int DataTableOperate::readDataRow(ConfigData& record) {
  if (dataIds.empty()) return kNoData;
  const int prepared = prepare(kSelectData + std::to_string(dataIds.front()));
  if (prepared != kOk) return prepared;
  bool deciphered = true;
  const int result = readFirstRow([&](IDBOperate&) {
    WipedBuffer payload;
    deciphered = decryptColumn(1, payload.bytes);
    if (!deciphered) return kOk;  // told below: the statement is finalized all the same
    record.data = newArrayOf(payload.bytes).release();
    record.dataSize = static_cast<std::uint32_t>(payload.bytes.size());
    record.dataSizeUpper = 0;
    record.reserved2 = 0;
    return kOk;
  });
  return deciphered ? result : kCipherFailed;
}

}  // namespace tovr
