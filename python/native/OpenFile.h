// The one database file that a process has open, with its transactions.
//
// A process that was forked off inherits the connection and must not touch it: what it does there would end locks and
// undo changes of its parent. It is told so, and at its end the connection is left alone.
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
  // Undoes what no transaction has kept, and closes.
  ~OpenFile();

  // Throws Error when the file is closed, and in another process.
  Session& session();

  // The same as the destructor; throws Error where the library says that something is wrong. Closed files stay
  // closed.
  void close();
  bool isClosed() const { return session_ == nullptr; }

  // Transactions within one another: how many are open; one more; the youngest is kept, or undone if that fails; the
  // youngest are undone until so many are left.
  std::size_t depth();
  void begin();
  void commit();
  void rollBackTo(std::size_t depth);

  // The checks of the whole file, which is closed and opened again for them. REQUIRES: no transaction, unless the
  // database is in memory.
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
    // Where it does not open any more it stays closed, and the next call says so.
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
