#include "tool/database/DatabaseChecks.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>

#include "tool/database/StoredArea.h"
#include "tool/database/StoredBlob.h"
#include "tool/database/Tables.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr char kTableSchema[] =
    "select name, sql from sqlite_master where type = 'table' and name not like 'sqlite_%' order by name";

// Runs one check; what ends it is its last fault.
template <class Check>
Verdict verdictOf(Session& session, const std::string& name, Check check) {
  Verdict verdict;
  verdict.name = name;
  try {
    check(verdict);
  } catch (const ToolError& error) {
    if (isNoFault(error)) throw;
    verdict.faults.emplace_back(error.what());
  }
  if (!verdict.ok()) beginAgain(session);
  return verdict;
}

void checkPages(Session& session, Verdict& verdict) {
  tovr::IDBOperate& connection = session.connection();
  verdict.detail = fmt::format("{} pages of {} bytes", queryNumber(connection, "pragma page_count"),
                               queryNumber(connection, "pragma page_size"));
  verdict.faults = pageFaults(session);
}

void checkSchema(Session& session, const std::vector<Row>& expected, Verdict& verdict) {
  verdict.detail = fmt::format("{} tables", expected.size());
  const auto present = schemaOf(session);
  const auto named = [](const std::vector<Row>& rows, const std::string& name) {
    return std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row[0] == name; });
  };
  for (const Row& table : expected) {
    const auto found = named(present, table[0]);
    if (found == present.end()) {
      verdict.faults.push_back(fmt::format("the table {} is missing", table[0]));
    } else if ((*found)[1] != table[1]) {
      verdict.faults.push_back(
          fmt::format("the table {} was not made by this statement's text: {}", table[0], table[1]));
    }
  }
  for (const Row& table : present) {
    if (named(expected, table[0]) == expected.end()) {
      verdict.faults.push_back(fmt::format("there is a tenth table, {}", table[0]));
    }
  }
}

void checkForeignKeys(Session& session, Verdict& verdict) {
  for (const Row& row : queryRows(session.connection(), "pragma foreign_key_check")) {
    verdict.faults.push_back(
        fmt::format("row {} of {} refers to a row of {} that is not there", row[1], row[0], row[2]));
  }
}

// Keys are read apart from the blobs, so that one damaged blob does not hide the others.
std::vector<std::int64_t> keys(Session& session, const std::string& table) {
  std::vector<std::int64_t> found;
  visitRows(session.connection(), fmt::format("select id from {} order by id", table),
            [&] { found.push_back(columnNumber(session.connection(), 0)); });
  return found;
}

struct BlockSize {
  std::uint64_t bytes = 0;
  std::int64_t cellBytes = 0;
};
using BlockSizes = std::map<std::int64_t, BlockSize>;  // of the blocks that decipher, by key

void checkBlob(Session& session, const std::string& table, std::int64_t key, Verdict& verdict, BlockSizes& sizes,
               Progress& progress) {
  const bool block = table == kBlockTable;
  tovr::IDBOperate& connection = session.connection();
  try {
    Bytes blob;
    std::int64_t cellBytes = 0;
    visitRows(
        connection,
        fmt::format("select {}, {} from {} where id = {}", kPayloadColumn, block ? "databitwidth" : "0", table, key),
        [&] {
          blob = columnBytes(connection, 0);
          cellBytes = columnNumber(connection, 1);
        });
    const auto payload = decipherBlob(session.host().encryption(), blob);
    if (block) sizes[key] = {payload.size(), cellBytes};
    progress.advance(blob.size());
  } catch (const ToolError& error) {
    if (isNoFault(error)) throw;
    verdict.faults.push_back(fmt::format("row {} of {}: {}", key, table, error.what()));
    beginAgain(session);
  }
}

void checkBlobs(Session& session, Verdict& verdict, BlockSizes& sizes, Progress& progress) {
  std::size_t count = 0;
  for (const char* table : kPayloadTables) {
    for (const std::int64_t key : keys(session, table)) {
      checkBlob(session, table, key, verdict, sizes, progress);
      ++count;
    }
  }
  verdict.detail = fmt::format("{} blobs, every byte deciphered", count);
}

std::string nameOf(const Placement& area) { return fmt::format("area {} ({})", area.id, toText(area.rect)); }

void checkLengths(const std::vector<Placement>& all, const BlockSizes& sizes, Verdict& verdict) {
  verdict.detail = fmt::format("{} areas, rectangle x bytes per cell", all.size());
  for (const Placement& area : all) {
    const auto size = sizes.find(area.blockId);
    if (columnsOf(area.rect) <= 0 || rowsOf(area.rect) <= 0) {
      verdict.faults.push_back(nameOf(area) + ": its rectangle is inverted");
    } else if (size != sizes.end() && !fills(size->second.bytes, area.rect, size->second.cellBytes)) {
      verdict.faults.push_back(fmt::format("{}: its block, row {} of Coef, has {} bytes and not {} x {} x {}",
                                           nameOf(area), area.blockId, size->second.bytes, columnsOf(area.rect),
                                           rowsOf(area.rect), size->second.cellBytes));
    }
  }
}

void checkInsideScreens(const std::vector<Placement>& all, Verdict& verdict) {
  verdict.detail = fmt::format("{} areas", all.size());
  for (const Placement& area : all) {
    if (!area.screenRect || holds(*area.screenRect, area.rect)) continue;
    verdict.faults.push_back(
        fmt::format("{} leaves its screen {} ({})", nameOf(area), area.screenId, toText(*area.screenRect)));
  }
}

void checkOverlaps(std::vector<Placement> all, Verdict& verdict) {
  verdict.detail = "areas of one screen and type";
  const auto group = [](const Placement& area) { return std::make_pair(area.screenId, area.type); };
  std::sort(all.begin(), all.end(), [&](const Placement& a, const Placement& b) {
    return std::make_tuple(group(a), a.rect.top, a.id) < std::make_tuple(group(b), b.rect.top, b.id);
  });
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = i + 1; j < all.size(); ++j) {
      if (group(all[j]) != group(all[i]) || all[j].rect.top > all[i].rect.bottom) break;
      if (!common(all[i].rect, all[j].rect)) continue;
      verdict.faults.push_back(fmt::format("{} and {} of screen {} and type {} overlap", nameOf(all[i]), nameOf(all[j]),
                                           all[i].screenId, all[i].type));
    }
  }
}

void checkCounters(Session& session, Verdict& verdict) {
  verdict.detail = "the last key that each table has issued";
  for (const std::string& table : kTables) {
    const std::int64_t largest =
        queryNumber(session.connection(), fmt::format("select ifnull(max(id), 0) from {}", table));
    const std::int64_t last =
        queryNumber(session.connection(),
                    fmt::format("select ifnull((select max(seq) from sqlite_sequence where name = '{}'), 0)", table));
    if (last >= largest) continue;
    verdict.faults.push_back(fmt::format(
        "{}: the counter says {}, but there is a row {}: the next keys may be used twice", table, last, largest));
  }
}

}  // namespace

std::vector<Row> schemaOf(Session& session) { return queryRows(session.connection(), kTableSchema); }
bool isNoFault(const ToolError& error) { return isEnded(error.code()) || error.code() == kBusy; }

void beginAgain(Session& session) {
  session.connection().exec("rollback");  // fails where there is none
  session.beginReading();
}

std::vector<Row> expectedSchema(const std::string& plugin) {
  Session session = Session::openMemory(plugin);
  session.require(session.manager().createTables());
  return schemaOf(session);
}

std::vector<std::string> pageFaults(Session& session, const std::string& schema) {
  tovr::IDBOperate& connection = session.connection();
  std::vector<std::string> faults;
  try {
    // Engines that do not know the statement answer nothing; a database in memory has no file to be looked at.
    const bool hasFile = !queryRows(connection, "pragma database_list").front()[2].empty();
    const auto unread =
        hasFile ? queryRows(connection, fmt::format("pragma {}.cipher_integrity_check", schema)) : std::vector<Row>();
    for (const Row& row : unread) faults.push_back(row[0]);
    for (const Row& row : queryRows(connection, fmt::format("pragma {}.integrity_check", schema))) {
      std::istringstream lines(row[0] == "ok" ? "" : row[0]);  // several faults in one text
      for (std::string line; std::getline(lines, line);) faults.push_back(line);
    }
  } catch (const ToolError& error) {  // a page that ends the reading
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
  beginAgain(session);
  const std::uint64_t bytes = bytesToCheck(session);
  verdicts.push_back(verdictOf(session, "pages", [&](Verdict& verdict) { checkPages(session, verdict); }));
  progress.advance(bytes / 2);
  verdicts.push_back(verdictOf(session, "schema", [&](Verdict& verdict) { checkSchema(session, schema, verdict); }));
  verdicts.push_back(verdictOf(session, "foreign keys", [&](Verdict& verdict) { checkForeignKeys(session, verdict); }));
  BlockSizes sizes;
  verdicts.push_back(
      verdictOf(session, "blobs", [&](Verdict& verdict) { checkBlobs(session, verdict, sizes, progress); }));
  std::vector<Placement> all;
  verdicts.push_back(verdictOf(session, "block lengths", [&](Verdict& verdict) {
    all = placements(session);
    checkLengths(all, sizes, verdict);
  }));
  verdicts.push_back(
      verdictOf(session, "areas in screens", [&](Verdict& verdict) { checkInsideScreens(all, verdict); }));
  verdicts.push_back(verdictOf(session, "overlaps", [&](Verdict& verdict) { checkOverlaps(all, verdict); }));
  verdicts.push_back(verdictOf(session, "key counters", [&](Verdict& verdict) { checkCounters(session, verdict); }));
  return verdicts;
}

}  // namespace tovrtool
