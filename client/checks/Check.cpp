#include "client/checks/Check.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <utility>

#include "client/base/Text.h"
#include "client/contents/RowNames.h"
#include "client/contents/StoredBlob.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

// Runs one check. An error that ends it becomes its last fault.
template <class Check>
Verdict verdictOf(Session& session, const std::string& name, Check check) {
  Verdict verdict;
  verdict.name = name;
  try {
    check(verdict);
  } catch (const Error& error) {
    if (isNoFault(error)) throw;
    verdict.faults.add(error.what());
  }
  if (!verdict.ok()) beginAgain(session);
  return verdict;
}

void checkPages(Session& session, Verdict& verdict) {
  tovr::IDBOperate& connection = session.connection();
  verdict.detail = fmt::format("{} pages of {} bytes", queryNumber(connection, "pragma page_count"),
                               queryNumber(connection, "pragma page_size"));
  for (const std::string& fault : pageFaults(session)) verdict.faults.add(fault);
}

void checkForeignKeys(Session& session, const RowNames& names, Verdict& verdict) {
  for (const Row& row : queryRows(session.connection(), "pragma foreign_key_check")) {
    verdict.faults.add(fmt::format("{} refers to a row of {} that is not there",
                                   names.of(row[0], std::strtoll(row[1].c_str(), nullptr, 10)), row[2]));
  }
}

// Reads keys without blobs, so that one damaged blob does not hide the others.
std::vector<std::int64_t> keys(Session& session, const std::string& table) {
  std::vector<std::int64_t> found;
  visitRows(session.connection(), fmt::format("select id from {} order by id", table),
            [&] { found.push_back(columnNumber(session.connection(), 0)); });
  return found;
}

// Decrypts every payload.
class BlobCheck {
 public:
  BlobCheck(Session& session, const RowNames& names, Progress& progress)
      : session_(session), names_(names), progress_(progress) {}

  void run(Verdict& verdict) {
    std::size_t count = 0;
    for (const char* table : kPayloadTables) {
      for (const std::int64_t key : keys(session_, table)) {
        check(table, key, verdict);
        ++count;
      }
    }
    verdict.detail = counted(count, "blob") + ", every byte decrypted";
  }

  BlockSizes takeSizes() { return std::move(sizes_); }

 private:
  void check(const std::string& table, std::int64_t key, Verdict& verdict) {
    const bool unused = names_.isUnused(table, key);
    try {
      read(table, key);
      if (unused) verdict.warnings.add(names_.of(table, key) + " is used by nothing: it only takes room");
    } catch (const Error& error) {
      if (isNoFault(error)) throw;
      Findings& findings = unused ? verdict.warnings : verdict.faults;
      findings.add(
          fmt::format("{}{}: {}", names_.of(table, key), unused ? ", which is used by nothing" : "", error.what()));
      beginAgain(session_);
    }
  }

  void read(const std::string& table, std::int64_t key) {
    const bool block = table == kBlockTable;
    tovr::IDBOperate& connection = session_.connection();
    Bytes blob;
    std::int64_t cellBytes = 0;
    visitRows(
        connection,
        fmt::format("select {}, {} from {} where id = {}", kPayloadColumn, block ? "databitwidth" : "0", table, key),
        [&] {
          blob = columnBytes(connection, 0);
          cellBytes = columnNumber(connection, 1);
        });
    const auto payload = decipherBlob(session_.host().encryption(), blob);
    if (block) sizes_[key] = {payload.size(), cellBytes};
    progress_.advance(blob.size());
  }

  Session& session_;
  const RowNames& names_;
  Progress& progress_;
  BlockSizes sizes_;
};

// A counter below the largest key means that keys of deleted rows may be issued again.
void checkCounters(Session& session, Verdict& verdict) {
  verdict.detail = "the last key that each table has issued";
  for (const char* table : kTables) {
    const std::int64_t largest =
        queryNumber(session.connection(), fmt::format("select ifnull(max(id), 0) from {}", table));
    const std::int64_t last =
        queryNumber(session.connection(),
                    fmt::format("select ifnull((select max(seq) from sqlite_sequence where name = '{}'), 0)", table));
    if (last >= largest) continue;
    verdict.warnings.add(
        fmt::format("{}: the counter says {}, but there is a row {}: keys of deleted rows may be "
                    "used again",
                    table, last, largest));
  }
}

}  // namespace

void Findings::add(std::string text) {
  ++count_;
  if (kept_.size() < kMostKept) kept_.push_back(std::move(text));
}

std::vector<std::string> Findings::first(std::size_t most) const {
  const std::size_t shown = std::min(most, kept_.size());
  std::vector<std::string> lines(kept_.begin(), kept_.begin() + static_cast<std::ptrdiff_t>(shown));
  if (count_ > shown) lines.push_back("and " + grouped(static_cast<std::int64_t>(count_ - shown)) + " more");
  return lines;
}

Soundness soundnessOf(const Verdict& verdict) {
  if (!verdict.faults.empty()) return Soundness::kFault;
  return verdict.warnings.empty() ? Soundness::kSound : Soundness::kWarning;
}

Soundness soundnessOf(const std::vector<Verdict>& verdicts) {
  Soundness worst = Soundness::kSound;
  for (const Verdict& verdict : verdicts) worst = std::max(worst, soundnessOf(verdict));
  return worst;
}

std::vector<std::string> pageFaults(Session& session, const std::string& schema) {
  tovr::IDBOperate& connection = session.connection();
  std::vector<std::string> faults;
  try {
    // Engines that do not know the statement return no rows. A database in memory has no file to check.
    const bool hasFile = !queryRows(connection, "pragma database_list").front()[2].empty();
    const auto unread =
        hasFile ? queryRows(connection, fmt::format("pragma {}.cipher_integrity_check", schema)) : std::vector<Row>();
    for (const Row& row : unread) faults.push_back(row[0]);
    for (const Row& row : queryRows(connection, fmt::format("pragma {}.integrity_check", schema))) {
      std::istringstream lines(row[0] == "ok" ? "" : row[0]);  // several faults in one text
      for (std::string line; std::getline(lines, line);) faults.push_back(line);
    }
  } catch (const Error& error) {  // a page that stops the engine
    if (isNoFault(error)) throw;
    faults.emplace_back(error.what());
  }
  return faults;
}

std::uint64_t bytesToCheck(Session& session) {
  const std::int64_t pages = queryNumber(session.connection(), "pragma page_count");
  return static_cast<std::uint64_t>(pages * queryNumber(session.connection(), "pragma page_size")) * 2;
}

std::vector<Verdict> checkDatabase(Session& session, const std::vector<Row>& schema, Progress& progress) {
  std::vector<Verdict> verdicts;
  const auto run = [&](const char* name, auto check) { verdicts.push_back(verdictOf(session, name, check)); };
  beginAgain(session);
  const std::uint64_t bytes = bytesToCheck(session);
  const RowNames names(session);
  run("pages", [&](Verdict& verdict) { checkPages(session, verdict); });
  progress.advance(bytes / 2);
  run("schema", [&](Verdict& verdict) { compareSchema(schema, schemaOf(session), verdict); });
  run("foreign keys", [&](Verdict& verdict) { checkForeignKeys(session, names, verdict); });
  BlobCheck blobs(session, names, progress);
  run("blobs", [&](Verdict& verdict) { blobs.run(verdict); });
  std::vector<Placement> areas;
  run("block lengths", [&](Verdict& verdict) {
    areas = placements(session);
    checkLengths(areas, blobs.takeSizes(), verdict);
  });
  run("screens", [&](Verdict& verdict) { checkScreens(session, names, verdict); });
  run("areas in screens", [&](Verdict& verdict) { checkInsideScreens(areas, verdict); });
  run("overlaps", [&](Verdict& verdict) { checkOverlaps(areas, verdict); });
  run("key counters", [&](Verdict& verdict) { checkCounters(session, verdict); });
  return verdicts;
}

}  // namespace tovrdb
