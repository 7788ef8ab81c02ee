#include "storage/DataTableOperateBase.h"

#include <algorithm>
#include <climits>

#include "storage/BlobCipher.h"
#include "storage/HostServices.h"
#include "storage/Log.h"
#include "storage/NumberText.h"
#include "storage/ResultTable.h"

namespace tovr {

DataTableOperateBase::DataTableOperateBase()
    : dbOperate(findOrCreateConnection()), encryption(findOrCreateEncryption()) {}

DataTableOperateBase::~DataTableOperateBase() = default;

int DataTableOperateBase::getDbType() { return kUnknownDatabaseType; }

int DataTableOperateBase::getSequence(const char* table, int* sequence) {
  if (dbOperate == nullptr) return kNoConnection;
  ResultTable last(*dbOperate, std::string(" Select seq From sqlite_sequence Where name = '") + table + "'");
  if (const char* value = last.cell(1, 0)) *sequence = intOrZero(value);
  return report(last.free());
}

int DataTableOperateBase::openDB(const std::string& path, const std::string& key) {
  IDBOperate* connection = findConnection();
  if (connection == nullptr) return kNoConnection;
  int result = connection->open(path.c_str());
  if (result == kOk) result = connection->setKey(key.data(), static_cast<unsigned int>(byteLength(key.size())));
  if (result == kOk) result = connection->exec("PRAGMA foreign_keys = ON");
  if (result == kOk) result = connection->exec("PRAGMA synchronous = OFF");
  return result;
}

int DataTableOperateBase::closeDB() {
  IDBOperate* connection = findConnection();
  return connection != nullptr ? connection->close() : kNoConnection;
}

bool DataTableOperateBase::checkDB() {
  IDBOperate* connection = findConnection();
  if (connection == nullptr) return false;
  const std::string sql = "select * from Coef_Info";
  return connection->prepare_v2(sql.c_str(), byteLength(sql.size())) == kOk;
}

const char* DataTableOperateBase::errMsg() {
  IDBOperate* connection = findConnection();
  return connection != nullptr ? connection->errMsg() : nullptr;
}

int DataTableOperateBase::exec(const std::string& sql) {
  logLine("DataTableOperateBase::exec sql :" + sql);
  return dbOperate != nullptr ? dbOperate->exec(sql.c_str()) : kNoConnection;
}

int DataTableOperateBase::prepare(const std::string& sql) {
  if (dbOperate == nullptr) return kNoConnection;
  return report(dbOperate->prepare_v2(sql.c_str(), byteLength(sql.size())));
}

int DataTableOperateBase::write(const std::string& sql, const StatementStep& bind) {
  int result = prepare(sql);
  if (result != kOk) return result;
  result = bind(*dbOperate);
  if (result == kOk) result = dbOperate->step();
  if (result != kStepDone) return report(result);
  result = dbOperate->reset();
  if (result == kOk) result = dbOperate->finalize();
  return report(result);
}

int DataTableOperateBase::readRows(const StatementStep& row) {
  while (dbOperate->step() == kStepRow) {
    const int result = row(*dbOperate);
    if (result != kOk) return report(result);
  }
  return finalize();
}

int DataTableOperateBase::readFirstRow(const StatementStep& row) {
  if (dbOperate->step() == kStepRow) {
    const int result = row(*dbOperate);
    if (result != kOk) return report(result);
  }
  return finalize();
}

int DataTableOperateBase::finalize() { return report(dbOperate->finalize()); }

int DataTableOperateBase::report(int result) {
  if (result != kOk) printErrorText(dbOperate->errMsg());
  return result;
}

bool DataTableOperateBase::encryptData(const void* data, unsigned int length, std::vector<unsigned char>& out) {
  return encryption != nullptr && encipherPayload(*encryption, data, length, out);
}

bool DataTableOperateBase::decryptData(const void* data, unsigned int length, std::vector<unsigned char>& out) {
  return encryption != nullptr && decipherPayload(*encryption, data, length, out);
}

bool DataTableOperateBase::decryptColumn(int column, std::vector<unsigned char>& out) {
  const void* blob = dbOperate->column_blob(column);
  const int length = dbOperate->column_bytes(column);
  return length >= 0 && decryptData(blob, static_cast<unsigned int>(length), out);
}

int byteLength(std::size_t size) { return static_cast<int>(std::min<std::size_t>(size, INT_MAX)); }

int firstFailure(std::initializer_list<int> results) {
  const auto* failure = std::find_if(results.begin(), results.end(), [](int result) { return result != kOk; });
  return failure != results.end() ? *failure : kOk;
}

int bindText(IDBOperate& db, int index, const std::string& text) {
  return db.bind_text(index, text.data(), byteLength(text.size()), nullptr);
}

int bindBlob(IDBOperate& db, int index, const std::vector<unsigned char>& blob) {
  return db.bind_blob(index, blob.data(), byteLength(blob.size()), nullptr);
}

std::string columnText(IDBOperate& db, int column) {
  const unsigned char* text = db.column_text(column);
  return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

std::unique_ptr<unsigned char[]> newArrayOf(const std::vector<unsigned char>& bytes) {
  std::unique_ptr<unsigned char[]> array(new unsigned char[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), array.get());
  return array;
}

}  // namespace tovr
