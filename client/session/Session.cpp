#include "client/session/Session.h"

#include <fmt/core.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "client/base/Listener.h"
#include "client/base/Text.h"
#include "client/disk/DatabaseFiles.h"
#include "client/disk/Platform.h"
#include "client/session/FileDiagnosis.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

constexpr unsigned int kSecond = 1000;
constexpr unsigned int kSilentWait = 300;  // milliseconds
constexpr std::chrono::milliseconds kBetweenAttempts{20};
constexpr char kFirstRead[] = "select count(*) from sqlite_master";

std::string missingTables(tovr::IDBOperate& connection) {
  const auto rows = queryRows(connection, "select name from sqlite_master where type = 'table'");
  std::vector<std::string> missing;
  for (const char* table : kTables) {
    if (std::none_of(rows.begin(), rows.end(), [&](const Row& row) { return row[0] == table; }))
      missing.emplace_back(table);
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

// A bare name means a file in the current folder first, as for any other file, and not the system's search.
std::string asFile(const std::string& name) {
  std::error_code error;
  return fs::exists(pathOf(name), error) ? textOf(fs::absolute(pathOf(name), error)) : name;
}

constexpr char kLibraryFolder[] = "../" TOVRDB_LIBRARY_FOLDER;

std::string pluginPath(const std::string& given) {
  if (!given.empty()) return asFile(given);
  const char* named = std::getenv("TOVRDB_PLUGIN");
  if (named != nullptr && *named != '\0') return asFile(named);

  const fs::path folder = pathOf(programFolder());
  const char* const places[] = {".", "../lib", kLibraryFolder, "../src"};
  for (const char* place : places) {
    std::error_code error;
    const fs::path candidate = folder / place / TOVRDB_PLUGIN_NAME;
    if (!folder.empty() && fs::exists(candidate, error)) return textOf(candidate.lexically_normal());
  }
  return TOVRDB_PLUGIN_NAME;
}

}  // namespace

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
  session.path_ = absolutePath(path);
  session.identity_ = fileIdentity(path);
  try {
    session.requireRightKey(session.openPatiently(path, key));
    session.setPatience(access.patience * kSecond);
    // FULL does not flush the end of the journal, so a power cut could undo the last change.
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
  open_ = true;  // also if it fails half-way
  return manager().openDB(path, key);
}

// The library reads the file before it can be told to wait. If a power cut has torn the beginning of the file, the
// engine derives its key from there before it plays the journal back: the first attempt repairs the file and fails.
int Session::openPatiently(const std::string& path, const std::string& key) {
  std::error_code error;
  const bool unfinished = fs::exists(pathOf(path + kJournalSuffix), error);
  int code = 0;
  waitFor([&] {
    code = open(path, key);
    return !isBusy(code);
  });
  return code == kNotADatabaseStatus && unfinished ? open(path, key) : code;
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
  queryNumber(connection(), kFirstRead);
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
  if (code == kNotADatabaseStatus) throw statusError(code, "the key is wrong, or the file is not a database");
  require(code);
}

// Only the first read shows that a key is wrong.
void Session::probe() {
  int code = connection().prepare_v2(kFirstRead, static_cast<int>(std::strlen(kFirstRead)));
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

// Savepoints of one name nest: each statement means the innermost.
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
  // After a failure of the disk the engine leaves undoing the change, and freeing its space, to the next read.
  if (!inner_) session_.connection().exec(kFirstRead);
}

void Transaction::commit() {
  interrupt_.check();
  session_.require(session_.execPatiently(inner_ ? "RELEASE inner" : "COMMIT"));
  committed_ = true;
  if (!inner_) noteCompletion();
}

}  // namespace tovrdb
