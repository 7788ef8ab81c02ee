#include "storage/DBOperate.h"

#include "plugin/MessageReply.h"

namespace tovr {

DBOperate::DBOperate() : db(std::make_unique<Sqlite3DB>()) {}

int DBOperate::open(const char* path) { return db->open(path); }

int DBOperate::close() { return db->close(); }

int DBOperate::setKey(const char* key, unsigned int length) { return db->setKey(key, length); }

int DBOperate::exec(const char* sql) { return db->exec(sql); }

int DBOperate::errCode() { return db->errCode(); }

const char* DBOperate::errMsg() { return db->errMsg(); }

int DBOperate::prepare_v2(const char* sql, int length) { return db->prepare_v2(sql, length); }

int DBOperate::bind_int(int index, int value) { return db->bind_int(index, value); }

int DBOperate::bind_int64(int index, std::int64_t value) { return db->bind_int64(index, value); }

int DBOperate::bind_double(int index, double value) { return db->bind_double(index, value); }

int DBOperate::bind_text(int index, const char* text, int length, void (*destructor)(void*)) {
  return db->bind_text(index, text, length, destructor);
}

int DBOperate::bind_blob(int index, const void* data, int length, void (*destructor)(void*)) {
  return db->bind_blob(index, data, length, destructor);
}

int DBOperate::bind_null(int index) { return db->bind_null(index); }

int DBOperate::step() { return db->step(); }

int DBOperate::reset() { return db->reset(); }

int DBOperate::finalize() { return db->finalize(); }

int DBOperate::get_table(const char* sql, char*** result, int* rows, int* columns) {
  return db->get_table(sql, result, rows, columns);
}

void DBOperate::free_table(char** result) { db->free_table(result); }

const void* DBOperate::column_blob(int column) { return db->column_blob(column); }

int DBOperate::column_bytes(int column) { return db->column_bytes(column); }

int DBOperate::column_int(int column) { return db->column_int(column); }

double DBOperate::column_double(int column) { return db->column_double(column); }

const unsigned char* DBOperate::column_text(int column) { return db->column_text(column); }

int DBOperate::handleMessage(lmx::IMessage* message) { return handBackMessage(message); }

}  // namespace tovr
