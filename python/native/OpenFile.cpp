#include "native/OpenFile.h"

#include <utility>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/checks/Check.h"
#include "client/disk/Platform.h"

namespace tovrdb::python {

OpenFile::OpenFile(Access access, std::string path, std::string key)
    : access_(std::move(access)), path_(std::move(path)), key_(std::move(key)), process_(processNumber()) {
  session_ = std::make_unique<Session>(Session::openExisting(access_, path_, key_));
}

OpenFile::OpenFile(Access access, const DatabaseDescription& description)
    : access_(std::move(access)), process_(processNumber()) {
  session_ = std::make_unique<Session>(Session::openMemory(access_.plugin));
  fillNew(*session_, description);
  schema_ = schemaOf(*session_);
}

OpenFile::~OpenFile() {
  if (isOurs()) {
    endTransactions();
  } else {
    for (auto& transaction : transactions_) static_cast<void>(transaction.release());
    static_cast<void>(session_.release());
  }
}

bool OpenFile::isOurs() const { return process_ == processNumber(); }

Session& OpenFile::session() {
  if (session_ == nullptr) throw Error(kInvalid, "the file is closed: open it again");
  if (!isOurs()) throw Error(kInvalid, "the file was opened in another process: open it again in this one");
  return *session_;
}

void OpenFile::close() {
  if (isClosed()) return;
  session();
  endSession();
}

// The innermost first.
void OpenFile::endTransactions() {
  while (!transactions_.empty()) transactions_.pop_back();
}

void OpenFile::endSession() {
  endTransactions();
  const auto session = std::move(session_);
  session->close();
}

std::size_t OpenFile::depth() {
  session();
  return transactions_.size();
}

void OpenFile::begin() { transactions_.push_back(std::make_unique<Transaction>(session())); }

void OpenFile::commit() {
  session();
  if (transactions_.empty()) throw Error(kInvalid, "no transaction was begun");
  const auto transaction = std::move(transactions_.back());
  transactions_.pop_back();
  transaction->commit();
}

void OpenFile::rollBackTo(std::size_t depth) {
  if (isClosed()) return;
  session();
  while (transactions_.size() > depth) transactions_.pop_back();
}

std::vector<Verdict> OpenFile::check() {
  const auto verdictsOf = [](Session& session, const std::vector<Row>& schema) {
    Progress progress("check", bytesToCheck(session));
    return checkDatabase(session, schema, progress);
  };
  if (!path_.empty()) {
    return whileClosed([&](const Access& access, const std::string& path, const std::string& key) {
      const std::vector<Row> schema = expectedSchema(access.plugin);
      Session session = Session::openExisting(access, path, key);
      return verdictsOf(session, schema);
    });
  }
  if (session().inTransaction()) throw Error(kInvalid, "not within a transaction: end it first");
  auto verdicts = verdictsOf(session(), schema_);
  session().connection().exec("rollback");  // ends the transaction in which the checks read
  return verdicts;
}

void OpenFile::requireReopenable() {
  if (session().inTransaction()) throw Error(kInvalid, "not within a transaction: end it first");
  if (path_.empty()) throw Error(kInvalid, "a database in memory has no file");
}

OpenFile::Reopening::~Reopening() {
  try {
    file_.session_ = std::make_unique<Session>(Session::openExisting(file_.access_, file_.path_, file_.key_));
  } catch (const std::exception&) {
    file_.session_ = nullptr;
  }
}

}  // namespace tovrdb::python
