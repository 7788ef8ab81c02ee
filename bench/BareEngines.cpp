#include "BareEngines.h"

#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/des.h>
#include <sqlcipher/sqlite3.h>

#include <cstring>
#include <stdexcept>

namespace tovrbench {
namespace {

void require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(std::string("bare engine: ") + what);
}

void des(const unsigned char* input, unsigned char* output, std::size_t length, int direction) {
  DES_cblock key;
  std::memcpy(key, "kelptarn", sizeof key);
  DES_cblock iv;
  std::memcpy(iv, key, sizeof iv);
  DES_key_schedule schedule;
  DES_set_key_unchecked(&key, &schedule);
  DES_ncbc_encrypt(input, output, static_cast<long>(length), &schedule, &iv, direction);
}

}  // namespace

void BareFile::Close::operator()(sqlite3* connection) const { sqlite3_close(connection); }

BareFile::BareFile(const std::string& path, const std::string& key) {
  sqlite3* connection = nullptr;
  const int opened = sqlite3_open(path.c_str(), &connection);
  connection_.reset(connection);
  require(opened == SQLITE_OK, "open");
  require(sqlite3_key(connection, key.data(), static_cast<int>(key.size())) == SQLITE_OK, "key");
  exec("PRAGMA foreign_keys = ON");
  exec("PRAGMA synchronous = OFF");
  exec("create table if not exists Coef (id INTEGER PRIMARY KEY AUTOINCREMENT,    data BLOB NOT NULL)");
}

void BareFile::exec(const char* sql) {
  require(sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
}

void BareFile::insert(const unsigned char* blob, std::size_t size) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(connection_.get(), "insert into Coef (data) values (?)", -1, &statement, nullptr);
  sqlite3_bind_blob(statement, 1, blob, static_cast<int>(size), SQLITE_STATIC);
  const int result = sqlite3_step(statement);
  sqlite3_finalize(statement);
  require(result == SQLITE_DONE, "insert");
}

void BareFile::selectInto(int id, void (*use)(void*, const unsigned char*, std::size_t), void* context) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(connection_.get(), "select * from Coef where id = ?", -1, &statement, nullptr);
  sqlite3_bind_int(statement, 1, id);
  const int result = sqlite3_step(statement);
  const auto* blob = static_cast<const unsigned char*>(sqlite3_column_blob(statement, 1));
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, 1));
  if (result == SQLITE_ROW) use(context, blob, size);
  sqlite3_finalize(statement);
  require(result == SQLITE_ROW, "select");
}

void desEncrypt(const unsigned char* input, unsigned char* output, std::size_t length) {
  des(input, output, length, DES_ENCRYPT);
}

void desDecrypt(const unsigned char* input, unsigned char* output, std::size_t length) {
  des(input, output, length, DES_DECRYPT);
}

}  // namespace tovrbench
