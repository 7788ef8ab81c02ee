
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/FileGeneration.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredRows.h"
#include "tool/io/JsonText.h"
#include "tool/io/TextTable.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  bool json = false;
};

struct Fact {
  const char* label;
  const char* name;  // in JSON
  std::string value;
};

struct TableFacts {
  std::string name;
  std::int64_t rows = 0;
  std::int64_t bytes = 0;  // the sum of the lengths of its values
};

struct ScreenFacts {
  tovr::ScreenInfoData screen;
  std::int64_t blocks = 0;
};

struct Facts {
  int type = 0;
  std::vector<Fact> description;
  std::vector<Fact> engine;  // what the engine answers
  std::vector<TableFacts> tables;
  std::vector<ScreenFacts> screens;
};

const char* typeText(int type) {
  if (type == 0) return "0 (screens are found by rectangle)";
  if (type == 1) return "1 (screens are found by name)";
  return "unknown (the file does not tell)";
}

std::vector<Fact> description(Session& session) {
  auto record = session.host().makeRecord<tovr::DBInfo>();
  session.require(session.manager().queryData(record.get()));
  return {{"name", "name", record->dbname},
          {"structure version", "structureVersion", record->datastructversion},
          {"software version", "softwareVersion", record->softwareversion},
          {"software type", "softwareType", record->softwaretype},
          {"database version", "databaseVersion", record->dbversion}};
}

// Engines leave questions that they do not know unanswered.
std::vector<Fact> engine(Session& session) {
  struct Question {
    const char* label;
    const char* name;
    const char* sql;
  };
  constexpr Question kQuestions[] = {
      {"engine", "sqliteVersion", "select sqlite_version()"},
      {"page encryption", "cipherVersion", "pragma cipher_version"},
      {"cipher", "cipher", "pragma cipher"},
      {"cipher provider", "cipherProvider", "pragma cipher_provider"},
      {"key derivation", "kdfIterations", "pragma kdf_iter"},
      {"page checksums", "pageHmac", "pragma cipher_use_hmac"},
      {"page size", "pageSize", "pragma page_size"},
      {"pages", "pages", "pragma page_count"},
      {"free pages", "freePages", "pragma freelist_count"},
  };
  std::vector<Fact> facts = {{"generation", "generation", generationText(fileGeneration(session))}};
  for (const Question& question : kQuestions) {
    const auto rows = queryRows(session.connection(), question.sql);
    if (!rows.empty() && !rows[0][0].empty()) facts.push_back({question.label, question.name, rows[0][0]});
  }
  return facts;
}

// A blob's length is known without reading it.
std::string bytesOf(const Row& column) {
  const std::string value = column[2] == "BLOB" ? column[1] : "cast(" + column[1] + " as blob)";
  return "ifnull(sum(length(" + value + ")), 0)";
}

TableFacts tableFacts(Session& session, const std::string& table) {
  std::string bytes;
  for (const Row& column : queryRows(session.connection(), "pragma table_info(" + table + ")")) {
    bytes += (bytes.empty() ? "" : " + ") + bytesOf(column);
  }
  TableFacts facts{table, 0, 0};
  visitRows(session.connection(), "select count(*), " + bytes + " from " + table, [&] {
    facts.rows = columnNumber(session.connection(), 0);
    facts.bytes = columnNumber(session.connection(), 1);
  });
  return facts;
}

std::vector<ScreenFacts> screens(Session& session) {
  auto all = session.host().makeRecord<tovr::ScreenInfoDataResult>();
  session.require(session.manager().queryData(all.get()));
  std::vector<ScreenFacts> facts;
  for (const auto& screen : all->screens) {
    facts.push_back({screen, queryNumber(session.connection(), "select count(*) from Coef_Info where screenid = " +
                                                                   std::to_string(screen.id))});
  }
  return facts;
}

Facts factsOf(Session& session) {
  Facts facts;
  facts.type = session.manager().getDBType();
  facts.description = description(session);
  facts.engine = engine(session);
  for (const std::string& table : kTables) facts.tables.push_back(tableFacts(session, table));
  facts.screens = screens(session);
  return facts;
}

std::string asText(const std::string& file, const Facts& facts) {
  std::vector<Row> general = {{"database type", typeText(facts.type)}};
  for (const Fact& fact : facts.description) general.push_back({fact.label, fact.value});
  for (const Fact& fact : facts.engine) general.push_back({fact.label, fact.value});
  std::vector<Row> tables;
  for (const TableFacts& table : facts.tables) {
    tables.push_back({table.name, std::to_string(table.rows), std::to_string(table.bytes)});
  }
  std::vector<Row> screenRows;
  for (const ScreenFacts& entry : facts.screens) {
    const Rect rect = rectOf(entry.screen);
    screenRows.push_back({std::to_string(entry.screen.id), entry.screen.screenname, toText(rect),
                          std::to_string(rect.columns()), std::to_string(rect.rows()), std::to_string(entry.blocks)});
  }
  return textTable({{"file"}, {file}}, general) + "\n" +
         textTable({{"table"}, {"rows", true}, {"bytes", true}}, tables) + "\n" +
         textTable({{"screen", true}, {"name"}, {"rectangle"}, {"columns", true}, {"rows", true}, {"blocks", true}},
                   screenRows);
}

Json asObject(const std::vector<Fact>& facts) {
  Json object = Json::object();
  for (const Fact& fact : facts) object[fact.name] = fact.value;
  return object;
}

std::string asJson(const std::string& file, const Facts& facts) {
  Json tables = Json::array();
  for (const TableFacts& table : facts.tables) {
    tables.push_back({{"name", table.name}, {"rows", table.rows}, {"bytes", table.bytes}});
  }
  Json screenList = Json::array();
  for (const ScreenFacts& entry : facts.screens) {
    const Rect rect = rectOf(entry.screen);
    screenList.push_back({{"id", entry.screen.id},
                          {"name", entry.screen.screenname},
                          {"rect", {rect.left, rect.top, rect.right, rect.bottom}},
                          {"blocks", entry.blocks}});
  }
  return jsonText({{"file", file},
                   {"databaseType", facts.type},
                   {"description", asObject(facts.description)},
                   {"engine", asObject(facts.engine)},
                   {"tables", tables},
                   {"screens", screenList}});
}

void info(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const Facts facts = factsOf(session);
  context.output.print(options.json ? asJson(options.file, facts) : asText(options.file, facts));
}

}  // namespace

void addInfoCommand(CommandGroup& program) {
  const auto [command, options] = program.add("info", "What a database file holds", &Options::file, info);
  addFile(command, options.file);
  command.add_flag("--json", options.json, "Print it as JSON");
}

}  // namespace tovrtool
