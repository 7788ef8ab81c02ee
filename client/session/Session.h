// The plug-in with one database file open in it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <tuple>

#include "client/base/Interrupt.h"
#include "host/PluginHost.h"

namespace tovrdb {

// How the program reaches database files.
struct Access {
  std::string plugin;         // the plug-in library; empty: see loadPlugin()
  unsigned int patience = 5;  // seconds for which another program is waited for
  bool flushed = true;        // what is committed is on the disk, and survives a power cut
  // Called a few times a second while another program is waited for; ends the waiting by throwing.
  std::function<void()> whileWaiting{};
};

// Loads the plug-in library `plugin`; if that is empty, TOVRDB_PLUGIN, else the first that exists: beside the program,
// in the library folder that belongs to it, in the build tree, and last where the system searches. Throws Error if it
// cannot be loaded.
std::unique_ptr<tovrhost::PluginHost> loadPlugin(const std::string& plugin);

// Identifies a state of an open file: if two are equal, what was read at the first is still true.
struct SessionState {
  std::uint64_t session = 0;     // the number of the session; 0: none
  std::int64_t dataVersion = 0;  // changes with each commit of another connection
  std::int64_t changes = 0;      // rows that the session has written
  std::int64_t undone = 0;       // transactions that the session has rolled back
};
inline bool operator==(const SessionState& one, const SessionState& other) {
  return std::tie(one.session, one.dataVersion, one.changes, one.undone) ==
         std::tie(other.session, other.dataVersion, other.changes, other.undone);
}

class Session {
 public:
  // Opens an existing database file and proves that the key fits and that it holds the nine tables. Throws Error,
  // also if other programs keep it busy for longer than the patience.
  static Session openExisting(const Access& access, const std::string& path, const std::string& key);
  // Opens a file that does not exist yet; the first write creates it. Nothing is flushed until it is complete.
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

  // From here on reads see one state of the file, whatever other programs write to it.
  void beginReading();

  // Runs a statement, waits for other programs if need be and tells the listener so. Returns the library's code. Throws
  // Error after an interrupt, and what `Access::whileWaiting` throws.
  int execPatiently(const char* sql);

  // Calls `attempt` until it returns true; throws Error (kBusy) when the patience ends. The engine itself does not wait
  // meanwhile.
  void waitUntil(const std::function<bool()>& attempt);

  // Throws Error (kBusy) if another file has taken the name since this one was opened: what is written here would
  // be lost. Call it while a lock keeps others from replacing the file.
  void requireInPlace() const;

  bool inTransaction() const { return transactions_ > 0; }

  // Call after a read failed on a damaged page: some engines then refuse all further reads of the transaction. Begins
  // it again, if there is one; later reads may see a later state of the file. Throws Error if the transaction has
  // written rows, which would be lost.
  void resumeReading();

  // Throws Error with the code, its meaning, the engine's words and `detail` unless `code` is 0.
  void require(int code, const std::string& detail = "");
  // Closes the file, which is complete then. Throws Error if the library refuses.
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
  int transactions_ = 0;         // nested
  std::int64_t rowsBefore_ = 0;  // written before the outermost one began
  std::int64_t undone_ = 0;      // transactions
  std::uint64_t number_;         // of all sessions of the process
};

// Statements that are committed together or not at all; the library itself rolls nothing back. An inner transaction can
// be rolled back by itself, and is committed only with the outer one.
class Transaction {
 public:
  explicit Transaction(Session& session);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  // Rolls back unless it was committed.
  ~Transaction();
  // Throws Error if the engine refuses, and after an interrupt.
  void commit();

 private:
  void rollBack();

  Session& session_;
  bool inner_;
  DeferredInterrupt interrupt_;
  bool committed_ = false;
};

}  // namespace tovrdb
