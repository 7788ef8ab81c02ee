#include "tables/LumChromaDataTableOperate.h"

#include <cstdio>

#include "crypto/WipedBuffer.h"
#include "manager/DataRecords.h"
#include "storage/ResultTable.h"
#include "tables/RectangleColumns.h"
#include "tables/Schema.h"

namespace tovr {
namespace {

constexpr char kInsertBlob[] = "insert into LumChromData(data, version) values (?, ?)";
constexpr char kInsertPlacement[] =
    "insert into LumChromDataInfo(screenid, dataid, datatablename, datatype, top, left, bottom,              right, "
    "ctime, mtime) values (?, ?, ?, ?, ?, ?, ?, ?, datetime('now','localtime'), datetime('now','localtime'))";
constexpr char kSelectFirstBlob[] = "select * from LumChromData where id = 1";
constexpr char kUpdatePlacement[] =
    "update LumChromDataInfo set datatablename=? where top = ?            and left = ? and bottom = ? and right = ? "
    "and datatype = ?";

constexpr int kPlacementColumns = 11;
constexpr std::size_t kDumpLimit = 256;
constexpr std::size_t kDumpLine = 16;

const std::string kScreenId = "1";  // every measurement is placed on the screen with key 1
const std::string kBlobTable = table::kLumChromData;
const std::string kRenamedTable = "LumDataTest";

std::string selectPlacements(const LumChromaData& record) {
  return "select * from LumChromDataInfo where top = " + std::to_string(record.top) +
         " and left = " + std::to_string(record.left) + " and bottom = " + std::to_string(record.bottom) +
         " and right = " + std::to_string(record.right) + " and datatype = " + std::to_string(record.datatype);
}

// Every sixteenth byte is not printed: the line ends in its place.
void dump(const std::vector<unsigned char>& bytes) {
  for (std::size_t i = 0; i < bytes.size() && i < kDumpLimit; ++i) {
    if ((i + 1) % kDumpLine == 0) {
      std::printf("\n");
    } else {
      std::printf("%X", static_cast<unsigned int>(bytes[i]));
    }
  }
}

}  // namespace

int LumChromaDataTableOperate::createTables() {
  const int result = exec(createLumChromData(table::kLumChromData));
  if (result != kOk) return result;
  return exec(createLumChromDataInfo(table::kLumChromDataInfo, table::kScreenInfo, table::kLumChromData));
}

int LumChromaDataTableOperate::query(DataBase* record) {
  if (record == nullptr) return kNoRecord;
  const auto* measurement = dynamic_cast<const LumChromaData*>(record);
  if (measurement == nullptr) return kInvalidRecord;
  if (dbOperate == nullptr) return kNoConnection;
  ResultTable placements(*dbOperate, selectPlacements(*measurement));
  for (int row = 1; row <= placements.rows(); ++row) placements.print(row, kPlacementColumns);
  const int result = report(placements.free());
  if (result == kOk) dumpFirstBlob();
  return result;
}

// Always the blob with key 1, whatever matched: hosts read the dump as a sign of life, not as the measurement.
void LumChromaDataTableOperate::dumpFirstBlob() {
  if (prepare(kSelectFirstBlob) != kOk) return;
  readFirstRow([&](IDBOperate&) {
    WipedBuffer payload;
    if (decryptColumn(1, payload.bytes)) dump(payload.bytes);
    return kOk;
  });
}

int LumChromaDataTableOperate::insert(DataBase* record) {
  if (record == nullptr) return kNoRecord;
  const auto* measurement = dynamic_cast<const LumChromaData*>(record);
  if (measurement == nullptr) return kInvalidRecord;
  int dataid = 0;
  int result = insertBlob(*measurement);
  if (result == kOk) result = getSequence(table::kLumChromData, &dataid);
  return result == kOk ? insertPlacement(*measurement, dataid) : result;
}

int LumChromaDataTableOperate::insertBlob(const LumChromaData& record) {
  std::vector<unsigned char> enciphered;
  return write(kInsertBlob, [&](IDBOperate& db) {
    if (!encryptData(record.data, record.dataSize, enciphered)) return kCipherFailed;
    return firstFailure({bindBlob(db, 1, enciphered), bindText(db, 2, record.version)});
  });
}

int LumChromaDataTableOperate::insertPlacement(const LumChromaData& record, int dataid) {
  return write(kInsertPlacement, [&](IDBOperate& db) {
    // Parameter 4, the data type, stays NULL on purpose: hosts know that the row is rejected and the blob kept.
    return firstFailure({bindText(db, 1, kScreenId), db.bind_int(2, dataid), bindText(db, 3, kBlobTable),
                         bindRectangle(db, 5, record)});
  });
}

int LumChromaDataTableOperate::deleteAll(DataBase* /*record*/) {
  const int result = exec(clearSpaced(table::kLumChromDataInfo));  // its rows refer to the blobs
  return result == kOk ? exec(clearDense(table::kLumChromData)) : result;
}

int LumChromaDataTableOperate::update(DataBase* record) {
  if (record == nullptr) return kNoRecord;
  const auto* measurement = dynamic_cast<const LumChromaData*>(record);
  if (measurement == nullptr) return kInvalidRecord;
  return write(kUpdatePlacement, [&](IDBOperate& db) {
    // Parameter 6, the data type, stays NULL on purpose: nothing equals NULL, so no row is ever renamed.
    return firstFailure({bindText(db, 1, kRenamedTable), bindRectangle(db, 2, *measurement)});
  });
}

}  // namespace tovr
