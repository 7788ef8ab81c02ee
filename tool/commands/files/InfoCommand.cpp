#include "client/cells/Rect.h"
#include "client/checks/FileFacts.h"
#include "client/checks/JsonForms.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/TextTable.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  bool json = false;
};

const char* typeText(int type) {
  if (type == 0) return "0 (screens are found by rectangle)";
  if (type == 1) return "1 (screens are found by name)";
  return "unknown (the file does not tell)";
}

std::string asText(const std::string& file, const FileFacts& facts) {
  TextRows general = {{"database type", typeText(facts.type)}};
  for (const Fact& fact : facts.description) general.push_back({fact.label, fact.value});
  for (const Fact& fact : facts.engine) general.push_back({fact.label, fact.value});
  TextRows tables;
  for (const TableFacts& table : facts.tables) {
    tables.push_back(
        {table.name, std::to_string(table.rows), table.fault.empty() ? std::to_string(table.bytes) : "damaged"});
  }
  TextRows screenRows;
  for (const ScreenFacts& entry : facts.screens) {
    const Rect& rect = entry.screen.rect;
    screenRows.push_back({std::to_string(entry.screen.id), entry.screen.name, toText(rect),
                          std::to_string(columnsOf(rect)), std::to_string(rowsOf(rect)), std::to_string(entry.areas)});
  }
  return textTable({{"file"}, {file}}, general) + "\n" +
         textTable({{"table"}, {"rows", true}, {"bytes", true}}, tables) + "\n" +
         textTable({{"screen", true}, {"name"}, {"rectangle"}, {"columns", true}, {"rows", true}, {"blocks", true}},
                   screenRows);
}

std::string asJson(const std::string& file, const FileFacts& facts) {
  Json json{{"file", file}};
  json.update(factsJson(facts));
  return jsonText(json);
}

void info(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const FileFacts facts = factsOf(session);
  context.output.print(options.json ? asJson(options.file, facts) : asText(options.file, facts));
}

}  // namespace

void addInfoCommand(CommandGroup& program) {
  const auto [command, options] = program.add("info", "What a database file holds", &Options::file, info);
  addFile(command, options.file);
  addJsonFlag(command, options.json);
}

}  // namespace tovrdb::tool
