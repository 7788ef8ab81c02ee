#include <fmt/core.h>

#include <filesystem>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/checks/Check.h"
#include "client/disk/FileOutput.h"
#include "client/disk/Platform.h"
#include "client/files/NewFiles.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

constexpr char kWriteAheadLog[] = "wal";

std::string journalMode(Session& session) { return queryRows(session.connection(), "pragma main.journal_mode")[0][0]; }

// Keeps the file out of WAL mode as long as this lives: a log left beside the old file would be taken for the new
// file's. Leaving the mode takes a program that has the file to itself.
class RollbackJournal {
 public:
  explicit RollbackJournal(Session& session) : session_(session), changed_(journalMode(session) == kWriteAheadLog) {
    if (!changed_) return;
    session.waitUntil([&session] {
      const int code = session.connection().exec("pragma main.journal_mode = delete");
      if (!isBusy(code)) session.require(code);
      return code == 0;
    });
  }
  RollbackJournal(const RollbackJournal&) = delete;
  RollbackJournal& operator=(const RollbackJournal&) = delete;
  ~RollbackJournal() {
    if (!changed_) return;
    session_.connection().exec("rollback");
    session_.connection().exec("pragma main.journal_mode = wal");
  }

  bool changed() const { return changed_; }
  void keep() { changed_ = false; }

 private:
  Session& session_;
  bool changed_;
};

// Keeps other programs from reading and writing the file until it is closed, even if this one commits.
void holdFile(Session& session) {
  session.require(session.connection().exec("pragma main.locking_mode = exclusive"));
  session.require(session.execPatiently("begin exclusive"));
  session.require(session.connection().exec("commit"));
  if (journalMode(session) == kWriteAheadLog) throw libraryError(kBusyStatus);  // another program has changed it back
  session.requireInPlace();
}

// The key is bound, so that no statement that the engine may show contains it.
void attach(Session& session, const std::string& path, const std::string& key) {
  constexpr char kSql[] = "attach database ? as rewritten key ?";
  tovr::IDBOperate& connection = session.connection();
  session.require(connection.prepare_v2(kSql, static_cast<int>(sizeof kSql - 1)));
  session.require(connection.bind_text(1, path.data(), static_cast<int>(path.size()), nullptr));
  session.require(connection.bind_text(2, key.data(), static_cast<int>(key.size()), nullptr));
  connection.step();
  session.require(connection.finalize(), "the new file cannot be made");
}

void detach(Session& session) { session.require(session.connection().exec("detach database rewritten")); }

void requireSame(Session& session, const std::string& what, const std::string& countDifferences) {
  if (queryNumber(session.connection(), countDifferences) == 0) return;
  throw Error(kRefused, "the new file differs in {} from the old one, which was left as it is", what);
}

std::string countBoth(const std::string& table) {
  return fmt::format("abs((select count(*) from main.{0}) - (select count(*) from rewritten.{0}))", table);
}

// SQL that counts the rows of `one` that `other` lacks.
std::string lacking(const std::string& columns, const std::string& table, const std::string& one,
                    const std::string& other) {
  return fmt::format("(select count(*) from (select {0} from {2}.{1} except select {0} from {3}.{1}))", columns, table,
                     one, other);
}

// For tables of any kind; holds all their rows in memory.
void requireSameSet(Session& session, const std::string& columns, const std::string& table) {
  requireSame(session, table,
              fmt::format("select {} + {} + {}", lacking(columns, table, "main", "rewritten"),
                          lacking(columns, table, "rewritten", "main"), countBoth(table)));
}

// Row by row, so that at most two blobs are in memory.
void requireSameRows(Session& session, const std::string& table) {
  std::string differs = "b.id is null";
  for (const std::string& column : columnNames(session.connection(), table)) {
    differs += fmt::format(" or a.{0} is not b.{0}", quotedName(column));
  }
  requireSame(session, table,
              fmt::format("select (select count(*) from main.{0} a left join rewritten.{0} b on b.id = a.id where {1})"
                          " + {2}",
                          table, differs, countBoth(table)));
}

// Compares tables that other programs have added. Virtual tables have no page: other tables hold their rows.
void requireSameForeignTables(Session& session) {
  for (const Row& row : queryRows(session.connection(),
                                  "select name from main.sqlite_master where type = 'table' and rootpage > 0"
                                  " and substr(name, 1, 7) <> 'sqlite_'")) {
    if (!isTable(row[0])) requireSameSet(session, "*", quotedName(row[0]));
  }
}

void copyAll(Session& session, Progress& progress, std::uint64_t bytes) {
  session.require(session.connection().exec("begin"));
  session.require(session.connection().exec("select sqlcipher_export('rewritten')"));
  for (const char* setting : {"user_version", "application_id"}) {
    const std::int64_t value = queryNumber(session.connection(), fmt::format("pragma main.{}", setting));
    session.require(session.connection().exec(fmt::format("pragma rewritten.{} = {}", setting, value).c_str()));
  }
  progress.advance(bytes);
  requireSameSet(session, "type, name, tbl_name, sql", "sqlite_master");
  requireSameSet(session, "name, seq", "sqlite_sequence");
  requireSameForeignTables(session);
  for (const char* table : kTables) {
    requireSameRows(session, table);
    progress.advance(bytes / kTables.size());
  }
  session.require(session.connection().exec("commit"));
}

// Reads every page from the disk with the new key.
void requireWhole(Session& session, const std::string& path, const std::string& key) {
  attach(session, path, key);
  if (!pageFaults(session, "rewritten").empty()) {
    throw Error(kRefused, "the new file is damaged; the old one was left as it is");
  }
  detach(session);
}

}  // namespace

void rewriteFile(const Access& access, const std::string& file, const std::string& key, const std::string& newKey,
                 const std::string& verb) {
  UnfinishedFile unfinished(file, Existing::kReplace, Writer::kEngine);
  Session session = Session::openExisting(access, file, key);
  RollbackJournal journal(session);
  holdFile(session);
  const std::uint64_t bytes = fs::file_size(pathOf(file));
  Progress progress(verb, bytes * 3);
  attach(session, unfinished.path(), newKey);
  copyAll(session, progress, bytes);
  if (journal.changed()) session.require(session.connection().exec("pragma rewritten.journal_mode = wal"));
  detach(session);
  unfinished.flush();
  requireWhole(session, unfinished.path(), newKey);
  progress.advance(0);
  session.requireInPlace();
  if (!kReplacesOpenFiles) session.close();
  unfinished.takeName();
  journal.keep();
  if (kReplacesOpenFiles) session.close();
}

}  // namespace tovrdb
