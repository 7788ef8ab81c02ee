#include "tables/CoefDataTableOperate.h"

#include <cstring>

#include "manager/DataRecords.h"
#include "storage/BlobCipher.h"
#include "tables/RectangleColumns.h"
#include "tables/Schema.h"

namespace tovr {
namespace {

constexpr char kSelectInfo[] = "select * from Coef_Info";
constexpr char kInsertInfo[] =
    "insert into Coef_Info(screenid, coefid, coeftablename, coeftype, areaid, top, left, bottom,              right, "
    "multilayersize, multilayerlist, ctime, mtime) "
    "values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, datetime('now','localtime'), datetime('now','localtime'))";
constexpr char kUpdateInfo[] =
    "update Coef_Info set screenid=?,coefid=?,coeftablename=?,coeftype=?,areaid=?,top=?,left=?,bottom=?,right=?,"
    "multilayersize=?,multilayerlist=?,mtime=datetime('now','localtime') where id=";
constexpr char kInsertCoef[] = "insert into Coef (data, databitwidth, version) values (?, ?, ?)";
constexpr char kSelectCoef[] = "select * from Coef where id = ";
constexpr char kUpdateCoef[] = "update Coef set data = ?, databitwidth = ? where id = ?";

// The parameters 1 to 11 of an insert and of an update. The stored table name is always "Coef".
int bindInfo(IDBOperate& db, const CoefData& coef) {
  const auto& layers = coef.multilayerlist;
  const void* layerBytes = layers.empty() ? nullptr : layers.data();
  return firstFailure({db.bind_int(1, coef.screenid), db.bind_int(2, coef.coefid),
                       db.bind_text(3, table::kCoef, byteLength(std::strlen(table::kCoef)), nullptr),
                       db.bind_int(4, coef.coeftype), db.bind_int(5, coef.areaid), bindRectangle(db, 6, coef),
                       db.bind_int(10, coef.multilayersize),
                       db.bind_blob(11, layerBytes, byteLength(layers.size() * sizeof(std::int32_t)), nullptr)});
}

// Whole elements only: another program may have stored a blob whose length is no multiple of 4.
std::vector<std::int32_t> readLayers(IDBOperate& db, int column) {
  const void* blob = db.column_blob(column);
  const int bytes = db.column_bytes(column);
  if (blob == nullptr || bytes <= 0) return {};
  std::vector<std::int32_t> layers(static_cast<std::size_t>(bytes) / sizeof(std::int32_t));
  if (!layers.empty()) std::memcpy(layers.data(), blob, layers.size() * sizeof(std::int32_t));
  return layers;
}

// The stored area number goes into areaIndex and never into areaid: the flows rely on areaid staying -1.
CoefData readInfo(IDBOperate& db) {
  CoefData coef;
  coef.id = db.column_int(0);
  coef.screenid = db.column_int(1);
  coef.coefid = db.column_int(2);
  coef.coeftablename = columnText(db, 3);
  coef.coeftype = db.column_int(4);
  coef.areaIndex = db.column_int(5);
  readRectangle(coef, 6, [&](int column) { return db.column_int(column); });
  coef.multilayersize = db.column_int(10);
  if (coef.multilayersize != 0) coef.multilayerlist = readLayers(db, 11);
  return coef;
}

}  // namespace

int CoefDataTableOperate::createTables() {
  const int result = exec(createCoef(table::kCoef));
  return result == kOk ? exec(createCoefInfo(table::kCoefInfo, table::kCoef, table::kScreenInfo)) : result;
}

int CoefDataTableOperate::query(DataBase* record) {
  auto* result = dynamic_cast<CoefDataResult*>(record);
  if (result == nullptr) return kInvalidRecord;
  const int prepared = prepare(kSelectInfo);
  if (prepared != kOk) return prepared;
  result->coefs.clear();
  return readRows([&](IDBOperate& db) {
    result->coefs.push_back(readInfo(db));
    return kOk;
  });
}

int CoefDataTableOperate::insert(DataBase* record) {
  const auto* coef = dynamic_cast<const CoefData*>(record);
  if (coef == nullptr) return kInvalidRecord;
  return write(kInsertInfo, [&](IDBOperate& db) { return bindInfo(db, *coef); });
}

int CoefDataTableOperate::deleteAll(DataBase* /*record*/) {
  const int result = exec(clearDense(table::kCoefInfo));  // its rows refer to those of "Coef"
  return result == kOk ? exec(clearDense(table::kCoef)) : result;
}

int CoefDataTableOperate::update(DataBase* record) {
  const auto* coef = dynamic_cast<const CoefData*>(record);
  if (coef == nullptr) return kInvalidRecord;
  return write(kUpdateInfo + std::to_string(coef->id), [&](IDBOperate& db) { return bindInfo(db, *coef); });
}

int CoefDataTableOperate::insertCoef(const CoefData* record) {
  return writeCoef(kInsertCoef, record, [&](IDBOperate& db) { return bindText(db, 3, record->version); });
}

int CoefDataTableOperate::updateCoef(int id, const CoefData* record) {
  return writeCoef(kUpdateCoef, record, [&](IDBOperate& db) { return db.bind_int(3, id); });
}

int CoefDataTableOperate::writeCoef(const char* sql, const CoefData* record, const StatementStep& bindThird) {
  if (record == nullptr) return kInvalidRecord;
  const CoefBuffer& block = record->coefBuffer;
  std::vector<unsigned char> enciphered;
  return write(sql, [&](IDBOperate& db) {
    if (block.datasize < 0) return kCipherFailed;
    if (!encryptData(block.data, static_cast<unsigned int>(block.datasize), enciphered)) return kCipherFailed;
    return firstFailure({bindBlob(db, 1, enciphered), db.bind_int(2, block.databitwidth), bindThird(db)});
  });
}

int CoefDataTableOperate::selectCoef(int id, CoefBuffer* out) {
  if (out == nullptr) return kInvalidRecord;
  const int prepared = prepare(kSelectCoef + std::to_string(id));
  if (prepared != kOk) return prepared;
  return readFirstRow([&](IDBOperate& db) {
    out->databitwidth = db.column_int(2);
    WipedBuffer cells;
    if (!decryptColumn(1, cells.bytes)) return kCipherFailed;
    out->data = newArrayOf(cells.bytes).release();
    out->datasize = static_cast<std::int32_t>(cells.bytes.size());
    return kOk;
  });
}

int CoefDataTableOperate::visitCoef(int id, const BlockReader& use) {
  const int prepared = prepare(kSelectCoef + std::to_string(id));
  if (prepared != kOk) return prepared;
  return readFirstRow([&](IDBOperate& db) {
    if (encryption == nullptr) return kCipherFailed;
    const int databitwidth = db.column_int(2);
    const void* bytes = db.column_blob(1);
    const int size = db.column_bytes(1);
    EncipheredBlob block(*encryption, bytes, size > 0 ? static_cast<std::size_t>(size) : 0);
    if (!block.open()) return kCipherFailed;
    use(databitwidth, block);
    return kOk;
  });
}

}  // namespace tovr
