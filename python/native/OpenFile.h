// The one database file that a process has open, with its transactions.
//
// A forked process inherits the connection and must not use it: that would release its parent's locks and undo its
// changes. Every call there throws, and the destructor does not touch the connection.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "client/checks/Check.h"
#include "client/files/NewFiles.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb::python {

class OpenFile {
 public:
  // Opens an existing file; `path` is absolute. Throws Error.
  OpenFile(Access access, std::string path, std::string key);
  // A new database in memory, gone when it is closed. Throws Error.
  OpenFile(Access access, const DatabaseDescription& description);
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  // Rolls back open transactions and closes the file.
  ~OpenFile();

  // Throws Error if the file is closed or another process opened it.
  Session& session();

  // As the destructor, but throws Error if the library reports a failure. Does nothing to a closed file.
  void close();
  bool isClosed() const { return session_ == nullptr; }

  // Nested transactions. depth() counts the open ones, begin() opens another, commit() commits the innermost one or
  // rolls it back if that fails, rollBackTo() rolls the innermost ones back until `depth` are left.
  std::size_t depth();
  void begin();
  void commit();
  void rollBackTo(std::size_t depth);

  // Checks the whole file, which is closed and opened again for it. Throws Error within a transaction.
  std::vector<Verdict> check();

  // Closes the file, runs `work(access, path, key)`, which may open it by itself, and opens it again. Throws Error
  // within a transaction and for a database in memory.
  template <class Work>
  auto whileClosed(Work work) {
    requireReopenable();
    endSession();
    const Reopening reopening(*this);
    auto result = work(access_, path_, key_);
    return result;
  }

 private:
  class Reopening {
   public:
    explicit Reopening(OpenFile& file) : file_(file) {}
    Reopening(const Reopening&) = delete;
    Reopening& operator=(const Reopening&) = delete;
    // If the file cannot be opened again it stays closed, and the next call throws.
    ~Reopening();

   private:
    OpenFile& file_;
  };

  bool isOurs() const;
  void requireReopenable();
  void endTransactions();
  void endSession();

  Access access_;
  std::string path_;  // empty: in memory
  std::string key_;
  int process_;
  std::vector<Row> schema_;  // of a database in memory, as it was made
  std::unique_ptr<Session> session_;
  std::vector<std::unique_ptr<Transaction>> transactions_;
};

}  // namespace tovrdb::python
