// The plug-in with one database file open in it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <tuple>

#include "client/base/Interrupt.h"
#include "client/session/Access.h"
#include "host/PluginHost.h"

namespace tovrdb {

// Loads the plug-in from `plugin`, or from where it usually lies when that is empty. Throws Error when there is
// none.
std::unique_ptr<tovrhost::PluginHost> loadPlugin(const std::string& plugin);

// What can be told without the key. Throws Error where `path` cannot be a database.
void requireDatabaseFile(const std::string& path);

// Which state of which open file: as long as two of them are equal, what was read at the first is still so.
struct SessionState {
  std::uint64_t session = 0;     // sessions are numbered; 0: none
  std::int64_t dataVersion = 0;  // changes with each commit of another connection
  std::int64_t changes = 0;      // rows that the session has written
  std::int64_t undone = 0;       // transactions that the session has rolled back
};
inline bool operator==(const SessionState& one, const SessionState& other) {
  return std::tie(one.session, one.dataVersion, one.changes, one.undone) ==
         std::tie(other.session, other.dataVersion, other.changes, other.undone);
}

constexpr int kBusyStatus = 5;  // the engine's answer while another program is using the file

class Session {
 public:
  // Opens an existing database file and proves that the key fits and that it holds the nine tables. Throws Error,
  // also where other programs keep it busy for longer than the patience.
  static Session openExisting(const Access& access, const std::string& path, const std::string& key);
  // Opens a file that does not exist yet; the first write makes it. It is flushed only when it is complete.
  static Session openNew(const std::string& plugin, const std::string& path, const std::string& key);
  // A database that lives in memory only.
  static Session openMemory(const std::string& plugin);

  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  Session(Session&&) = default;
  Session& operator=(Session&&) = delete;
  ~Session();

  tovrhost::PluginHost& host() { return *host_; }
  tovr::IDBManager& manager() { return host_->manager(); }
  tovr::IDBOperate& connection() { return host_->connection(); }

  // Reads nothing but the file's first page. Throws Error on failure.
  SessionState state();

  // Reads one state of the file from here on; until then other programs may have written to it.
  void beginReading();

  // Runs a statement that waits for other programs, and says so on a terminal. Returns the library's code. Throws
  // Error after an interrupt, and what `Access::whileWaiting` throws.
  int execPatiently(const char* sql);

  // Calls `attempt` until it answers true, or the patience ends: then it throws Error (kBusy). The engine itself
  // waits for nobody meanwhile.
  void waitUntil(const std::function<bool()>& attempt);

  // Throws Error (kBusy) if another file has taken the name since this one was opened: what is written here would
  // be lost. To be asked behind a lock that keeps the name, too.
  void requireInPlace() const;

  bool inTransaction() const { return transactions_ > 0; }

  // After a read failed on a damaged page: until their transaction ends, some engines then answer nothing more. Begins
  // it again, if there is one; what is read from there on may be a later state of the file. Throws Error if it has
  // written rows, which would be lost.
  void resumeReading();

  // Throws Error with the code, its meaning, the engine's words and `detail` unless `code` is 0.
  void require(int code, const std::string& detail = "");
  // The file is complete and closed. Throws Error where the library says otherwise.
  void close();

 private:
  friend class Transaction;
  explicit Session(std::unique_ptr<tovrhost::PluginHost> host);
  int open(const std::string& path, const std::string& key);
  int openPatiently(const std::string& path, const std::string& key);
  bool waitFor(const std::function<bool()>& attempt) const;
  void setPatience(unsigned int milliseconds);
  int execFor(unsigned int milliseconds, const char* sql);
  void announceWait() const;
  void checkWaiting() const;
  std::int64_t writtenRows();
  void probe();
  void requireRightKey(int code);

  std::unique_ptr<tovrhost::PluginHost> host_;
  bool open_ = false;
  unsigned int patience_ = 0;  // seconds
  std::function<void()> whileWaiting_;
  std::string path_;             // of an existing file, absolute
  std::string identity_;         // of that file when it was opened
  int transactions_ = 0;         // one within the other
  std::int64_t rowsBefore_ = 0;  // that were written before the outer one began
  std::int64_t undone_ = 0;      // transactions
  std::uint64_t number_;         // of all sessions of the process
};

// Several statements that are kept together or not at all: the library itself rolls nothing back. One within another is
// undone by itself, and kept only with the outer one.
class Transaction {
 public:
  explicit Transaction(Session& session);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  // Undoes everything since the beginning unless it was committed.
  ~Transaction();
  // Throws Error where the engine refuses, and after an interrupt.
  void commit();

 private:
  void rollBack();

  Session& session_;
  bool inner_;
  DeferredInterrupt interrupt_;
  bool committed_ = false;
};

}  // namespace tovrdb
