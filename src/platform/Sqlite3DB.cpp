#include "platform/Sqlite3DB.h"

#include <sqlcipher/sqlite3.h>

#include <climits>

namespace tovr {
namespace {

constexpr char kClosedText[] = "no database file is open";
constexpr char kWrongEngineText[] =
    "the sqlite3 functions of this process come from a library without page encryption: do not link the host to plain "
    "SQLite, or load it after SQLCipher";

// A host that itself links plain SQLite makes the loader bind this library's calls to that engine, which would write
// the file in plain without any error.
bool engineHasPageEncryption() { return sqlite3_compileoption_used("HAS_CODEC") != 0; }

// SQLCipher 4 changed the page size, the key derivation and the checksums that files have by default; it reads those of
// 3.x when told to. It grew out of SQLite 3.25, the last 3.x out of 3.20.
bool engineKnowsTwoGenerations() { return sqlite3_libversion_number() >= 3025000; }

constexpr int kPatienceMilliseconds = 5000;  // with another program that is writing just now

}  // namespace

void Sqlite3DB::CloseConnection::operator()(sqlite3* connection) const { sqlite3_close(connection); }

void Sqlite3DB::FinalizeStatement::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Sqlite3DB::Sqlite3DB() : openResult_(SQLITE_MISUSE) {}

Sqlite3DB::~Sqlite3DB() = default;

bool Sqlite3DB::isOpen() const { return connection_ != nullptr && openResult_ == SQLITE_OK; }

int Sqlite3DB::open(const char* path) {
  close();
  if (path == nullptr) return SQLITE_MISUSE;
  if (!engineHasPageEncryption()) {
    openResult_ = SQLITE_ERROR;
    return openResult_;
  }
  path_ = path;
  return connect();
}

int Sqlite3DB::connect() {
  sqlite3* connection = nullptr;
  openResult_ = sqlite3_open(path_.c_str(), &connection);
  connection_.reset(connection);  // a failed open hands back a handle too: it holds the error text
  return openResult_;
}

int Sqlite3DB::setKey(const char* key, unsigned int length) {
  if (!isOpen() || length > INT_MAX) return SQLITE_MISUSE;
  const int result = keyConnection(key, static_cast<int>(length));
  if (result != SQLITE_OK || !engineKnowsTwoGenerations() || opensWithKey()) return result;
  return keyOlderFile(key, static_cast<int>(length));
}

int Sqlite3DB::keyConnection(const char* key, int length) { return sqlite3_key(connection_.get(), key, length); }

// False only where the first page makes no sense: another failure will come again, and is for the caller to see. The
// engine, which logs to standard error, is silent meanwhile.
bool Sqlite3DB::opensWithKey() {
  exec("PRAGMA cipher_log_level = NONE");
  sqlite3_busy_timeout(connection_.get(), kPatienceMilliseconds);
  const int result = exec("select count(*) from sqlite_master");
  sqlite3_busy_timeout(connection_.get(), 0);
  exec("PRAGMA cipher_log_level = ERROR");
  return result != SQLITE_NOTADB;
}

// A connection that has failed to read with a key stays unusable: every attempt takes a fresh one. Where the file is
// not of the older generation either, it is keyed as if nothing had been tried, and the first read fails.
int Sqlite3DB::keyOlderFile(const char* key, int length) {
  statement_.reset();
  int result = connect();
  if (result == SQLITE_OK) result = keyConnection(key, length);
  if (result == SQLITE_OK) result = exec("PRAGMA cipher_compatibility = 3");
  if (result != SQLITE_OK || opensWithKey()) return result;
  result = connect();
  return result == SQLITE_OK ? keyConnection(key, length) : result;
}

int Sqlite3DB::close() {
  statement_.reset();
  const int result = sqlite3_close(connection_.get());
  if (result != SQLITE_OK) return result;
  static_cast<void>(connection_.release());
  openResult_ = SQLITE_MISUSE;
  return SQLITE_OK;
}

int Sqlite3DB::exec(const char* sql) {
  if (!isOpen()) return SQLITE_MISUSE;
  return sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
}

int Sqlite3DB::errCode() { return connection_ != nullptr ? sqlite3_errcode(connection_.get()) : openResult_; }

const char* Sqlite3DB::errMsg() {
  if (connection_ != nullptr) return sqlite3_errmsg(connection_.get());
  return openResult_ == SQLITE_ERROR ? kWrongEngineText : kClosedText;
}

int Sqlite3DB::prepare_v2(const char* sql, int length) {
  statement_.reset();
  if (!isOpen() || sql == nullptr) return SQLITE_MISUSE;
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v2(connection_.get(), sql, length, &statement, nullptr);
  statement_.reset(statement);
  return result;
}

// SQLite itself answers 21 for a null statement in every bind function.
int Sqlite3DB::bind_int(int index, int value) { return sqlite3_bind_int(statement_.get(), index, value); }

int Sqlite3DB::bind_int64(int index, std::int64_t value) { return sqlite3_bind_int64(statement_.get(), index, value); }

int Sqlite3DB::bind_double(int index, double value) { return sqlite3_bind_double(statement_.get(), index, value); }

int Sqlite3DB::bind_text(int index, const char* text, int length, void (*destructor)(void*)) {
  return sqlite3_bind_text(statement_.get(), index, text, length, destructor);
}

int Sqlite3DB::bind_blob(int index, const void* data, int length, void (*destructor)(void*)) {
  // Refused through the null statement, for which SQLite still runs the destructor.
  sqlite3_stmt* statement = length < 0 ? nullptr : statement_.get();
  return sqlite3_bind_blob(statement, index, data, length, destructor);
}

int Sqlite3DB::bind_null(int index) { return sqlite3_bind_null(statement_.get(), index); }

int Sqlite3DB::step() { return sqlite3_step(statement_.get()); }

// These two answer 0 for a null statement, as sqlite3_close does for a null connection.
int Sqlite3DB::reset() { return sqlite3_reset(statement_.get()); }

int Sqlite3DB::finalize() { return sqlite3_finalize(statement_.release()); }

int Sqlite3DB::get_table(const char* sql, char*** result, int* rows, int* columns) {
  if (result != nullptr) *result = nullptr;
  if (rows != nullptr) *rows = 0;
  if (columns != nullptr) *columns = 0;
  if (!isOpen() || sql == nullptr || result == nullptr) return SQLITE_MISUSE;
  return sqlite3_get_table(connection_.get(), sql, result, rows, columns, nullptr);
}

void Sqlite3DB::free_table(char** result) { sqlite3_free_table(result); }

// SQLite itself answers null and 0 for a null statement and for a column that is not there.
const void* Sqlite3DB::column_blob(int column) { return sqlite3_column_blob(statement_.get(), column); }

int Sqlite3DB::column_bytes(int column) { return sqlite3_column_bytes(statement_.get(), column); }

int Sqlite3DB::column_int(int column) { return sqlite3_column_int(statement_.get(), column); }

double Sqlite3DB::column_double(int column) { return sqlite3_column_double(statement_.get(), column); }

const unsigned char* Sqlite3DB::column_text(int column) { return sqlite3_column_text(statement_.get(), column); }

}  // namespace tovr
