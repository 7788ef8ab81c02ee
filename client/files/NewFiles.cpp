#include "client/files/NewFiles.h"

#include <filesystem>
#include <vector>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/checks/Check.h"
#include "client/disk/DatabaseFiles.h"
#include "client/disk/FileOutput.h"
#include "client/disk/Platform.h"
#include "client/session/FileDiagnosis.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPiece = std::size_t{1} << 20;

void requireOther(const std::string& file, const std::string& copy) {
  std::error_code error;
  if (fs::equivalent(pathOf(file), pathOf(copy), error))
    throw Error(kInvalid, "the copy would replace the file: give another name");
}

// Moves the write-ahead log into the file and begins a transaction, which keeps others from committing. False, without
// a transaction, if another program has committed in between or is committing.
bool holdWithoutLog(Session& session, const std::string& file) {
  queryRows(session.connection(), "PRAGMA wal_checkpoint(TRUNCATE)");
  const int code = session.connection().exec("BEGIN IMMEDIATE");
  if (isBusy(code)) return false;
  session.require(code);
  std::error_code error;
  const std::uintmax_t size = fs::file_size(pathOf(followedLink(file) + kWalSuffix), error);
  if (error || size == 0) return true;
  session.require(session.connection().exec("ROLLBACK"));
  return false;
}

// Until the session is closed, the file alone is the database, in one state.
void holdState(Session& session, const std::string& file) {
  session.beginReading();
  if (queryRows(session.connection(), "PRAGMA journal_mode")[0][0] != "wal") return;
  session.require(session.connection().exec("ROLLBACK"));
  session.waitUntil([&] { return holdWithoutLog(session, file); });
}

void copyBytes(std::FILE* input, const std::string& from, const std::string& to, Progress& progress) {
  const FileHandle output = createNew(to);
  if (output == nullptr) throw systemFailure("cannot create the copy");
  std::error_code error;
  fs::permissions(pathOf(to), fs::status(pathOf(from)).permissions(), error);
  std::vector<unsigned char> piece(kPiece);
  for (std::size_t count = kPiece; count == kPiece;) {
    count = std::fread(piece.data(), 1, kPiece, input);
    if (std::ferror(input) != 0) throw systemFailure("cannot read " + from);
    if (std::fwrite(piece.data(), 1, count, output.get()) != count) {
      throw systemFailure("cannot write the copy");
    }
    progress.advance(count);
  }
  if (std::fflush(output.get()) != 0) throw systemFailure("cannot write the copy");
}

// The session is closed before the input, which on POSIX releases all locks of this program on the file.
void copyOneState(const Access& access, const std::string& file, const std::string& key, const std::string& to,
                  Progress& progress) {
  Session session = Session::openExisting(access, file, key);
  holdState(session, file);
  const FileHandle input(std::fopen(file.c_str(), "rb"));
  if (input == nullptr) throw systemFailure("cannot read " + file);
  copyBytes(input.get(), file, to, progress);
  session.close();
}

void requireWhole(const Access& access, const std::string& copy, const std::string& key) {
  Session session = Session::openExisting(access, copy, key);
  const auto faults = pageFaults(session);
  session.close();
  if (faults.empty()) return;
  throw Error(kDamaged, "the copy is damaged, as the file may be, and was not kept: {}", faults.front())
      .suggest(Remedy::kCheckFile);
}

}  // namespace

void requireFree(const std::string& file) { const UnfinishedFile place(file, Existing::kKeep, Writer::kEngine); }

void makeDatabase(const std::string& plugin, const std::string& file, const std::string& key,
                  const DatabaseDescription& description) {
  UnfinishedFile unfinished(file, Existing::kKeep, Writer::kEngine);
  Session session = Session::openNew(plugin, unfinished.path(), key);
  DatabaseDescription named = description;
  if (named.name.empty()) named.name = textOf(pathOf(file).stem());
  fillNew(session, named);
  session.close();
  unfinished.finish();
}

void fillNew(Session& session, const DatabaseDescription& description) {
  applyChanges(session, [&](Session&) { return ChangePlan{{CreateTables{}, AddDescription{description}}, {}}; });
}

void backUp(const Access& access, const std::string& file, const std::string& key, const std::string& copy,
            Existing existing) {
  requireDatabaseFile(file);
  requireOther(file, copy);
  UnfinishedFile unfinished(copy, existing, Writer::kEngine);
  const std::uint64_t size = fs::file_size(pathOf(file));
  Progress progress("backup", size * 2);
  copyOneState(access, file, key, unfinished.path(), progress);
  requireWhole(access, unfinished.path(), key);
  progress.advance(size);
  unfinished.finish();
}

}  // namespace tovrdb
