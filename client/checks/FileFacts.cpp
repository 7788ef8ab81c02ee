#include "client/checks/FileFacts.h"

#include <fmt/format.h>

#include <map>

#include "client/contents/StoredArea.h"
#include "client/session/Damage.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

std::vector<Fact> description(Session& session) {
  auto record = session.host().makeRecord<tovr::DBInfo>();
  session.require(session.manager().queryData(record.get()));
  return {{"name", "name", record->dbname},
          {"structure version", "structure_version", record->datastructversion},
          {"software version", "software_version", record->softwareversion},
          {"software type", "software_type", record->softwaretype},
          {"database version", "database_version", record->dbversion}};
}

// Engines return no rows for questions that they do not know.
std::vector<Fact> engine(Session& session) {
  struct Question {
    const char* label;
    const char* name;
    const char* sql;
  };
  constexpr Question kQuestions[] = {
      {"engine", "sqlite_version", "select sqlite_version()"},
      {"page encryption", "cipher_version", "pragma cipher_version"},
      {"cipher", "cipher", "pragma cipher"},
      {"cipher provider", "cipher_provider", "pragma cipher_provider"},
      {"key derivation", "kdf_iterations", "pragma kdf_iter"},
      {"page checksums", "page_hmac", "pragma cipher_use_hmac"},
      {"page size", "page_size", "pragma page_size"},
      {"pages", "pages", "pragma page_count"},
      {"free pages", "free_pages", "pragma freelist_count"},
  };
  std::vector<Fact> facts = {{"generation", "generation", generationText(fileGeneration(session))}};
  for (const Question& question : kQuestions) {
    const auto rows = queryRows(session.connection(), question.sql);
    if (!rows.empty() && !rows[0][0].empty()) facts.push_back({question.label, question.name, rows[0][0]});
  }
  return facts;
}

// SQL for the length of a column; the engine knows a blob's without reading it.
std::string bytesOf(const Row& column) {
  const std::string name = quotedName(column[1]);
  const std::string value = column[2] == "BLOB" ? name : fmt::format("cast({} as blob)", name);
  return fmt::format("ifnull(sum(length({})), 0)", value);
}

std::int64_t countRows(Session& session, const std::string& table) {
  try {
    return queryNumber(session.connection(), "select count(*) from " + table);
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    session.resumeReading();
    return 0;
  }
}

TableFacts tableFacts(Session& session, const std::string& table) {
  std::vector<std::string> bytes;
  for (const Row& column : queryRows(session.connection(), fmt::format("pragma table_info({})", table))) {
    bytes.push_back(bytesOf(column));
  }
  TableFacts facts{table, 0, 0, {}};
  try {
    visitRows(session.connection(), fmt::format("select count(*), {} from {}", fmt::join(bytes, " + "), table), [&] {
      facts.rows = columnNumber(session.connection(), 0);
      facts.bytes = columnNumber(session.connection(), 1);
    });
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    facts.fault = error.what();
    session.resumeReading();
    facts.rows = countRows(session, table);
  }
  return facts;
}

std::vector<ScreenFacts> screenFacts(Session& session) {
  std::map<std::int64_t, std::int64_t> areas;  // by screen
  for (const Placement& area : placements(session)) ++areas[area.screenId];
  std::vector<ScreenFacts> facts;
  for (const StoredScreen& screen : storedScreens(session)) facts.push_back({screen, areas[screen.id]});
  return facts;
}

}  // namespace

FileFacts factsOf(Session& session) {
  FileFacts facts;
  facts.type = session.manager().getDBType();
  facts.description = description(session);
  facts.engine = engine(session);
  for (const char* table : kTables) facts.tables.push_back(tableFacts(session, table));
  facts.screens = screenFacts(session);
  return facts;
}

int engineGeneration(Session& session) {
  const auto rows = queryRows(session.connection(), "pragma cipher_version");
  return !rows.empty() && rows[0][0].rfind("4.", 0) == 0 ? 4 : 3;
}

// For a file of 3.x the library sets the engine's number of rounds of key derivation.
int fileGeneration(Session& session) {
  constexpr std::int64_t kRoundsOf3 = 64000;
  return engineGeneration(session) == 4 && queryNumber(session.connection(), "pragma kdf_iter") != kRoundsOf3 ? 4 : 3;
}

std::string generationText(int generation) { return fmt::format("{}.x", generation); }

}  // namespace tovrdb
