#include "client/session/Session.h"

#include <fmt/core.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "client/base/Listener.h"
#include "client/base/Text.h"
#include "client/disk/DatabaseFiles.h"
#include "client/disk/Platform.h"
#include "client/session/FileDiagnosis.h"
#include "client/session/LibraryError.h"
#include "client/session/PluginPath.h"
#include "client/session/SqlQuery.h"
#include "client/session/Tables.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

constexpr int kDamagedFile = 11;
constexpr int kNotADatabase = 26;
constexpr unsigned int kSecond = 1000;
constexpr unsigned int kSilentWait = 300;  // milliseconds
constexpr std::chrono::milliseconds kBetweenAttempts{20};

std::string missingTables(tovr::IDBOperate& connection) {
  const auto rows = queryRows(connection, "select name from sqlite_master where type = 'table'");
  std::vector<std::string> missing;
  for (const std::string& table : kTables) {
    if (std::none_of(rows.begin(), rows.end(), [&](const Row& row) { return row[0] == table; }))
      missing.push_back(table);
  }
  if (missing.empty()) return {};
  return missing.size() == kTables.size() ? "all nine of them" : shortList(missing);
}

std::uint64_t nextNumber() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

// 0 if the engine does not tell; needs no key.
std::int64_t enginePageSize(tovr::IDBOperate& connection) {
  try {
    return queryNumber(connection, "pragma cipher_page_size");
  } catch (const Error&) {
    return 0;
  }
}

// Why a file does not open, as far as its bytes tell.
Error diagnosed(const Error& error, const std::string& path, const std::string& key, std::int64_t pageSize) {
  if (error.status() != kNotADatabase && error.status() != kDamagedFile) return error;
  Error diagnosis =
      error.status() == kNotADatabase ? diagnoseUnreadable(path, key, pageSize) : diagnoseDamaged(path, pageSize);
  diagnosis.setStatus(error.status());
  return diagnosis;
}

}  // namespace

void requireDatabaseFile(const std::string& path) {
  std::error_code error;  // opening a missing file would make it
  const fs::file_status status = fs::status(pathOf(path), error);
  if (!fs::exists(status)) {
    throw Error(kFileProblem, "there is no such file").suggest(Remedy::kCreateFile);
  }
  if (!fs::is_regular_file(status)) throw Error(kFileProblem, "it is not a file");
  std::ifstream file(pathOf(path), std::ios::binary);
  if (!file) throw Error(kFileProblem, "the file cannot be read; check its permissions");
  constexpr std::size_t kMagicLength = 15;
  std::string start(kMagicLength, '\0');
  file.read(start.data(), kMagicLength);
  if (file.gcount() == 0) throw Error(kFileProblem, "the file is empty (0 bytes); it never was a database");
  if (start == "SQLite format 3") {
    throw Error(kFileProblem, "it is an SQLite database, but not an encrypted one");
  }
}

std::unique_ptr<tovrhost::PluginHost> loadPlugin(const std::string& plugin) {
  try {
    return std::make_unique<tovrhost::PluginHost>(pluginPath(plugin));
  } catch (const std::runtime_error& error) {
    throw Error(kPluginProblem, error.what()).suggest(Remedy::kLocatePlugin);
  }
}

Session Session::openExisting(const Access& access, const std::string& path, const std::string& key) {
  requireDatabaseFile(path);
  Session session(loadPlugin(access.plugin));
  session.patience_ = access.patience;
  session.whileWaiting_ = access.whileWaiting;
  session.path_ = textOf(fs::absolute(pathOf(path)));
  session.identity_ = fileIdentity(path);
  try {
    session.requireRightKey(session.openPatiently(path, key));
    session.setPatience(access.patience * kSecond);
    // More than FULL, which flushes all but the end of the journal, and so may undo the last change.
    if (access.flushed) session.require(session.connection().exec("PRAGMA synchronous = EXTRA"));
    session.probe();
  } catch (const Error& error) {
    throw diagnosed(error, path, key, enginePageSize(session.connection()));
  }
  return session;
}

Session Session::openMemory(const std::string& plugin) {
  Session session(loadPlugin(plugin));
  session.requireRightKey(session.open(":memory:", "memory"));
  return session;
}

Session Session::openNew(const std::string& plugin, const std::string& path, const std::string& key) {
  Session session(loadPlugin(plugin));
  session.requireRightKey(session.open(path, key));
  return session;
}

Session::Session(std::unique_ptr<tovrhost::PluginHost> host) : host_(std::move(host)), number_(nextNumber()) {}

Session::~Session() {
  if (host_ != nullptr && open_) host_->manager().closeDB();
}

int Session::open(const std::string& path, const std::string& key) {
  open_ = true;  // also when it fails half-way
  return manager().openDB(path, key);
}

// The library reads the file before it can be told to wait. Where a power cut has torn the beginning of the file, the
// engine takes its key from there before it plays the journal back: the first attempt puts the file right and fails.
int Session::openPatiently(const std::string& path, const std::string& key) {
  std::error_code error;
  const bool unfinished = fs::exists(pathOf(path + kJournalSuffix), error);
  int code = 0;
  waitFor([&] {
    code = open(path, key);
    return !isBusy(code);
  });
  return code == kNotADatabase && unfinished ? open(path, key) : code;
}

bool Session::waitFor(const std::function<bool()>& attempt) const {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(patience_);
  bool done = attempt();
  if (!done && patience_ > 0) announceWait();
  while (!done && std::chrono::steady_clock::now() < end) {
    checkWaiting();
    std::this_thread::sleep_for(kBetweenAttempts);
    done = attempt();
  }
  return done;
}

void Session::waitUntil(const std::function<bool()>& attempt) {
  setPatience(0);
  if (!waitFor(attempt)) throw libraryError(kBusyStatus);
  setPatience(patience_ * kSecond);
}

void Session::requireInPlace() const {
  if (fileIdentity(path_) == identity_) return;
  throw Error(kBusy,
              "another program has replaced or moved the file (by rekey, for instance) since it was opened; nothing "
              "was stored: open it again");
}

void Session::setPatience(unsigned int milliseconds) {
  require(connection().exec(fmt::format("PRAGMA busy_timeout = {}", milliseconds).c_str()));
}

void Session::announceWait() const { listener().onWait(patience_); }

void Session::checkWaiting() const {
  if (whileWaiting_) whileWaiting_();
  const DeferredInterrupt interrupt;
  interrupt.check();
}

int Session::execPatiently(const char* sql) {
  if (patience_ == 0) return connection().exec(sql);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(patience_);
  int code = execFor(kSilentWait, sql);
  if (isBusy(code)) announceWait();
  while (isBusy(code) && std::chrono::steady_clock::now() < end) {
    checkWaiting();
    code = execFor(kSilentWait, sql);
  }
  return code;
}

int Session::execFor(unsigned int milliseconds, const char* sql) {
  setPatience(milliseconds);
  const int code = connection().exec(sql);
  setPatience(patience_ * kSecond);
  return code;
}

SessionState Session::state() {
  return {number_, queryNumber(connection(), "PRAGMA data_version"), writtenRows(), undone_};
}

void Session::beginReading() {
  require(connection().exec("begin"));
  queryNumber(connection(), "select count(*) from sqlite_master");
}

void Session::resumeReading() {
  if (inTransaction() && writtenRows() != rowsBefore_) {
    throw Error(kRefused, "a damaged page was met in a transaction that has written already; undo it first");
  }
  const bool reading = connection().exec("ROLLBACK") == 0;  // fails if there is no transaction
  if (inTransaction()) {
    require(execPatiently("BEGIN IMMEDIATE"));
    for (int i = 1; i < transactions_; ++i) require(connection().exec("SAVEPOINT inner"));
  } else if (reading) {
    beginReading();
  }
}

std::int64_t Session::writtenRows() { return queryNumber(connection(), "select total_changes()"); }

void Session::requireRightKey(int code) {
  if (code == kNotADatabase) throw statusError(code, "the key is wrong, or the file is not a database");
  require(code);
}

// The first read: only now does a wrong key show.
void Session::probe() {
  const std::string sql = "select count(*) from sqlite_master";
  int code = connection().prepare_v2(sql.c_str(), static_cast<int>(sql.size()));
  if (code == 0) {
    connection().step();
    code = connection().finalize();
  }
  requireRightKey(code);
  const std::string missing = missingTables(connection());
  if (!missing.empty()) {
    throw Error(kFileProblem, "the key opens it, but it is not a calibration database; it lacks tables: {}", missing);
  }
}

void Session::require(int code, const std::string& detail) { requireEngine(connection(), code, "", detail); }

void Session::close() {
  open_ = false;
  require(manager().closeDB());
}

// Savepoints of one name nest: each statement means the youngest.
Transaction::Transaction(Session& session) : session_(session), inner_(session.inTransaction()) {
  session_.require(session_.execPatiently(inner_ ? "SAVEPOINT inner" : "BEGIN IMMEDIATE"));
  if (!inner_) session_.rowsBefore_ = session_.writtenRows();
  ++session_.transactions_;
  if (inner_) return;
  try {
    session_.requireInPlace();
  } catch (...) {
    rollBack();
    throw;
  }
}

Transaction::~Transaction() {
  if (committed_) {
    --session_.transactions_;
  } else {
    rollBack();
  }
}

void Transaction::rollBack() {
  --session_.transactions_;
  session_.connection().exec(inner_ ? "ROLLBACK TO inner; RELEASE inner" : "ROLLBACK");
  ++session_.undone_;
  // After a failure of the disk the engine leaves the undoing, and the room that it takes, to the next read.
  if (!inner_) session_.connection().exec("select count(*) from sqlite_master");
}

void Transaction::commit() {
  interrupt_.check();
  session_.require(session_.execPatiently(inner_ ? "RELEASE inner" : "COMMIT"));
  committed_ = true;
  if (!inner_) noteCompletion();
}

}  // namespace tovrdb
