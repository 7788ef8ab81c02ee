#include "tool/database/FileRewrite.h"

#include <fmt/core.h>

#include <filesystem>

#include "tool/database/DatabaseChecks.h"
#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredRows.h"
#include "tool/database/Tables.h"
#include "tool/io/Progress.h"
#include "tool/io/UnfinishedFile.h"
#include "tool/system/Paths.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

// What tells whether somebody wrote to a file.
struct FileState {
  explicit FileState(const std::string& path)
      : size(fs::file_size(pathOf(path))), time(fs::last_write_time(pathOf(path))) {}
  bool operator==(const FileState& other) const { return size == other.size && time == other.time; }

  std::uintmax_t size;
  fs::file_time_type time;
};

// The key is bound, not written into the statement: no text that the engine may show holds it.
void attach(Session& session, const std::string& path, const std::string& key) {
  constexpr char kSql[] = "attach database ? as rewritten key ?";
  tovr::IDBOperate& connection = session.connection();
  session.require(connection.prepare_v2(kSql, static_cast<int>(sizeof kSql - 1)));
  session.require(connection.bind_text(1, path.data(), static_cast<int>(path.size()), nullptr));
  session.require(connection.bind_text(2, key.data(), static_cast<int>(key.size()), nullptr));
  connection.step();
  session.require(connection.finalize(), "the new file cannot be made");
}

void requireSame(Session& session, const std::string& what, const std::string& countDifferences) {
  if (queryNumber(session.connection(), countDifferences) == 0) return;
  throw ToolError(kRefused, "the new file differs in {} from the old one, which was left as it is", what);
}

// Rows of `one` that `other` lacks, of a small table.
std::string lacking(const std::string& columns, const std::string& table, const std::string& one,
                    const std::string& other) {
  return fmt::format("(select count(*) from (select {0} from {2}.{1} except select {0} from {3}.{1}))", columns, table,
                     one, other);
}

void requireSameSmall(Session& session, const std::string& columns, const std::string& table) {
  requireSame(session, table,
              fmt::format("select {} + {}", lacking(columns, table, "main", "rewritten"),
                          lacking(columns, table, "rewritten", "main")));
}

// Row by row, so that no more than two blobs are held at a time.
void requireSameRows(Session& session, const std::string& table) {
  std::string differs = "b.id is null";
  for (const std::string& column : columnNames(session.connection(), table)) {
    differs += fmt::format(" or a.{0} is not b.{0}", column);
  }
  requireSame(session, table,
              fmt::format("select (select count(*) from main.{0} a left join rewritten.{0} b on b.id = a.id where {1})"
                          " + abs((select count(*) from main.{0}) - (select count(*) from rewritten.{0}))",
                          table, differs));
}

void copyAll(Session& session, Progress& progress, std::uint64_t bytes) {
  // Nobody else writes to the old file while it is copied.
  session.require(session.execPatiently("begin exclusive"));
  const std::int64_t version = queryNumber(session.connection(), "pragma main.user_version");
  session.require(session.connection().exec("select sqlcipher_export('rewritten')"));
  session.require(session.connection().exec(fmt::format("pragma rewritten.user_version = {}", version).c_str()));
  progress.advance(bytes);
  requireSameSmall(session, "type, name, tbl_name, sql", "sqlite_master");
  requireSameSmall(session, "name, seq", "sqlite_sequence");
  for (const std::string& table : kTables) {
    requireSameRows(session, table);
    progress.advance(bytes / kTables.size());
  }
}

// Reads every page from the disk with the new key.
void requireWhole(const Access& access, const std::string& path, const std::string& key) {
  Session session = Session::openExisting(access, path, key);
  if (!pageFaults(session).empty()) {
    throw ToolError(kRefused, "the new file is damaged; the old one was left as it is");
  }
  session.close();
}

}  // namespace

void rewriteFile(const Access& access, const std::string& file, const std::string& key, const std::string& newKey,
                 const std::string& verb) {
  UnfinishedFile unfinished(file, Existing::kReplace, Writer::kEngine);
  const FileState before(file);
  Progress progress(verb, before.size * 3);
  {
    Session session = Session::openExisting(access, file, key);
    attach(session, unfinished.path(), newKey);
    copyAll(session, progress, before.size);
    session.require(session.connection().exec("commit"));
    session.require(session.connection().exec("detach database rewritten"));
    session.close();
  }
  requireWhole(access, unfinished.path(), newKey);
  progress.advance(0);
  if (!(FileState(file) == before)) {
    throw ToolError(kRefused, "another program wrote to the file meanwhile; it was left as it is: try again");
  }
  unfinished.finish();
}

}  // namespace tovrtool
