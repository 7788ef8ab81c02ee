#include "tool/database/DatabaseChecks.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>

#include "tool/cells/Rect.h"
#include "tool/database/StoredBlob.h"
#include "tool/database/StoredRows.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr const char* kPayloadTables[] = {"Coef", "LumChromData", "Data"};
constexpr char kTableSchema[] =
    "select name, sql from sqlite_master where type = 'table' and name not like 'sqlite_%' order by name";

// From here on one state of the file is read, whoever else writes to it. After a page that could not be read the
// engine refuses every other until its transaction has ended.
void beginAgain(Session& session) {
  session.connection().exec("rollback");  // fails where there is none
  session.beginReading();
}

// What says nothing about the file.
bool isNoFault(const ToolError& error) { return error.code() == kInterrupted || error.code() == kBusy; }

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
  verdict.detail = std::to_string(queryNumber(connection, "pragma page_count")) + " pages of " +
                   std::to_string(queryNumber(connection, "pragma page_size")) + " bytes";
  verdict.faults = pageFaults(session);
}

void checkSchema(Session& session, const std::vector<Row>& expected, Verdict& verdict) {
  verdict.detail = std::to_string(expected.size()) + " tables";
  const auto present = queryRows(session.connection(), kTableSchema);
  const auto named = [](const std::vector<Row>& rows, const std::string& name) {
    return std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row[0] == name; });
  };
  for (const Row& table : expected) {
    const auto found = named(present, table[0]);
    if (found == present.end()) {
      verdict.faults.push_back("the table " + table[0] + " is missing");
    } else if ((*found)[1] != table[1]) {
      verdict.faults.push_back("the table " + table[0] + " was not made by this statement's text: " + table[1]);
    }
  }
  for (const Row& table : present) {
    if (named(expected, table[0]) == expected.end()) verdict.faults.push_back("there is a tenth table, " + table[0]);
  }
}

void checkForeignKeys(Session& session, Verdict& verdict) {
  for (const Row& row : queryRows(session.connection(), "pragma foreign_key_check")) {
    verdict.faults.push_back("row " + row[1] + " of " + row[0] + " refers to a row of " + row[2] +
                             " that is not there");
  }
}

// Keys are read apart from the blobs, so that one damaged blob does not hide the others.
std::vector<std::int64_t> keys(Session& session, const std::string& table) {
  std::vector<std::int64_t> found;
  visitRows(session.connection(), "select id from " + table + " order by id",
            [&] { found.push_back(columnNumber(session.connection(), 0)); });
  return found;
}

struct BlockSize {
  std::int64_t bytes = 0;
  std::int64_t cellBytes = 0;
};
using BlockSizes = std::map<std::int64_t, BlockSize>;  // of the blocks that decipher, by key

void checkBlob(Session& session, const std::string& table, std::int64_t key, Verdict& verdict, BlockSizes& sizes,
               Progress& progress) {
  const bool block = table == kPayloadTables[0];
  tovr::IDBOperate& connection = session.connection();
  try {
    Bytes blob;
    std::int64_t cellBytes = 0;
    visitRows(connection,
              std::string(block ? "select data, databitwidth" : "select data, 0") + " from " + table +
                  " where id = " + std::to_string(key),
              [&] {
                blob = columnBytes(connection, 0);
                cellBytes = columnNumber(connection, 1);
              });
    const auto payload = decipherBlob(session.host().encryption(), blob);
    if (block) sizes[key] = {static_cast<std::int64_t>(payload.size()), cellBytes};
    progress.advance(blob.size());
  } catch (const ToolError& error) {
    if (isNoFault(error)) throw;
    verdict.faults.push_back("row " + std::to_string(key) + " of " + table + ": " + error.what());
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
  verdict.detail = std::to_string(count) + " blobs, every byte deciphered";
}

struct Area {
  std::int64_t id = 0;
  std::int64_t screen = 0;
  std::int64_t block = 0;
  std::int32_t type = 0;
  Rect rect;
  Rect screenRect;
  bool hasScreen = false;

  std::string name() const { return "area " + std::to_string(id) + " (" + toText(rect) + ")"; }
  bool inverted() const { return rect.columns() <= 0 || rect.rows() <= 0; }
};

std::vector<Area> areas(Session& session) {
  tovr::IDBOperate& connection = session.connection();
  std::vector<Area> found;
  visitRows(connection,
            "select i.left, i.top, i.right, i.bottom, s.left, s.top, s.right, s.bottom, i.id, i.screenid, i.coefid,"
            " i.coeftype, s.id is not null from Coef_Info i left join Screen_Info s on s.id = i.screenid order by i.id",
            [&] {
              const auto rect = [&](int first) {
                return Rect{connection.column_int(first), connection.column_int(first + 1),
                            connection.column_int(first + 2), connection.column_int(first + 3)};
              };
              Area area;
              area.rect = rect(0);
              area.screenRect = rect(4);
              area.id = columnNumber(connection, 8);
              area.screen = columnNumber(connection, 9);
              area.block = columnNumber(connection, 10);
              area.type = connection.column_int(11);
              area.hasScreen = connection.column_int(12) != 0;
              found.push_back(area);
            });
  return found;
}

// Exact for every rectangle: the product of three numbers of 32 bits can exceed 64.
bool isExactly(std::int64_t bytes, const Rect& rect, std::int64_t cellBytes) {
  if (cellBytes <= 0) return false;
  const std::int64_t rowBytes = rect.columns() * cellBytes;  // below 2^63
  return bytes % rowBytes == 0 && bytes / rowBytes == rect.rows();
}

void checkLengths(const std::vector<Area>& all, const BlockSizes& sizes, Verdict& verdict) {
  verdict.detail = std::to_string(all.size()) + " areas, rectangle x bytes per cell";
  for (const Area& area : all) {
    const auto size = sizes.find(area.block);
    if (area.inverted()) {
      verdict.faults.push_back(area.name() + ": its rectangle is inverted");
    } else if (size != sizes.end() && !isExactly(size->second.bytes, area.rect, size->second.cellBytes)) {
      verdict.faults.push_back(area.name() + ": its block, row " + std::to_string(area.block) + " of Coef, has " +
                               std::to_string(size->second.bytes) + " bytes and not " +
                               std::to_string(area.rect.columns()) + " x " + std::to_string(area.rect.rows()) + " x " +
                               std::to_string(size->second.cellBytes));
    }
  }
}

void checkInsideScreens(const std::vector<Area>& all, Verdict& verdict) {
  verdict.detail = std::to_string(all.size()) + " areas";
  for (const Area& area : all) {
    if (!area.hasScreen || area.screenRect.holds(area.rect)) continue;
    verdict.faults.push_back(area.name() + " leaves its screen " + std::to_string(area.screen) + " (" +
                             toText(area.screenRect) + ")");
  }
}

bool overlap(const Rect& a, const Rect& b) {
  return a.left <= b.right && b.left <= a.right && a.top <= b.bottom && b.top <= a.bottom;
}

void checkOverlaps(std::vector<Area> all, Verdict& verdict) {
  verdict.detail = "areas of one screen and type";
  const auto group = [](const Area& area) { return std::make_pair(area.screen, area.type); };
  std::sort(all.begin(), all.end(), [&](const Area& a, const Area& b) {
    return std::make_tuple(group(a), a.rect.top, a.id) < std::make_tuple(group(b), b.rect.top, b.id);
  });
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = i + 1; j < all.size(); ++j) {
      if (group(all[j]) != group(all[i]) || all[j].rect.top > all[i].rect.bottom) break;
      if (!overlap(all[i].rect, all[j].rect)) continue;
      verdict.faults.push_back(all[i].name() + " and " + all[j].name() + " of screen " + std::to_string(all[i].screen) +
                               " and type " + std::to_string(all[i].type) + " overlap");
    }
  }
}

void checkCounters(Session& session, Verdict& verdict) {
  verdict.detail = "the last key that each table has issued";
  for (const std::string& table : kTables) {
    const std::int64_t largest = queryNumber(session.connection(), "select ifnull(max(id), 0) from " + table);
    const std::int64_t last = queryNumber(
        session.connection(), "select ifnull((select max(seq) from sqlite_sequence where name = '" + table + "'), 0)");
    if (last >= largest) continue;
    verdict.faults.push_back(table + ": the counter says " + std::to_string(last) + ", but there is a row " +
                             std::to_string(largest) + ": the next keys may be used twice");
  }
}

}  // namespace

std::vector<Row> expectedSchema(const std::string& plugin) {
  Session session = Session::openMemory(plugin);
  session.require(session.manager().createTables());
  return queryRows(session.connection(), kTableSchema);
}

std::vector<std::string> pageFaults(Session& session) {
  tovr::IDBOperate& connection = session.connection();
  std::vector<std::string> faults;
  try {
    // Engines that do not know the first statement answer nothing.
    for (const Row& row : queryRows(connection, "pragma cipher_integrity_check")) faults.push_back(row[0]);
    for (const Row& row : queryRows(connection, "pragma integrity_check")) {
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
  std::vector<Area> all;
  verdicts.push_back(verdictOf(session, "block lengths", [&](Verdict& verdict) {
    all = areas(session);
    checkLengths(all, sizes, verdict);
  }));
  verdicts.push_back(
      verdictOf(session, "areas in screens", [&](Verdict& verdict) { checkInsideScreens(all, verdict); }));
  verdicts.push_back(verdictOf(session, "overlaps", [&](Verdict& verdict) { checkOverlaps(all, verdict); }));
  verdicts.push_back(verdictOf(session, "key counters", [&](Verdict& verdict) { checkCounters(session, verdict); }));
  return verdicts;
}

}  // namespace tovrtool
