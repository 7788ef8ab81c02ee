#include "tool/InfoCommand.h"

#include <memory>

#include "tool/Arguments.h"
#include "tool/Session.h"
#include "tool/SqlQuery.h"
#include "tool/TextTable.h"

namespace tovrtool {
namespace {

const char* typeText(int type) {
  if (type == 0) return "0 (screens are found by rectangle)";
  if (type == 1) return "1 (screens are found by name)";
  return "unknown (the file does not tell)";
}

void info(Context& context, const std::string& file) {
  Session session = Session::openExisting(context, file);
  const int type = session.manager().getDBType();
  auto record = session.host().makeRecord<tovr::DBInfo>();
  session.require(session.manager().queryData(record.get()));

  std::vector<std::vector<std::string>> counts;
  std::string screens;
  std::string areas;
  for (const std::string& table : kTables) {
    const std::string count = std::to_string(queryNumber(session.connection(), "select count(*) from " + table));
    if (table == "Screen_Info") screens = count;
    if (table == "Coef_Info") areas = count;
    counts.push_back({table, count});
  }
  context.output.print(textTable({{"file"}, {file}}, {{"database type", typeText(type)},
                                                      {"name", record->dbname},
                                                      {"structure version", record->datastructversion},
                                                      {"software version", record->softwareversion},
                                                      {"software type", record->softwaretype},
                                                      {"database version", record->dbversion},
                                                      {"screens", screens},
                                                      {"coefficient areas", areas}}) +
                       "\n" + textTable({{"table"}, {"rows", true}}, counts));
}

}  // namespace

void addInfoCommand(CLI::App& app, Command& chosen) {
  auto file = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand("info", "What a database file holds");
  addFile(*command, *file);
  command->callback([&chosen, file] {
    chosen = {"info " + *file, [file](Context& context) { info(context, *file); }};
  });
}

}  // namespace tovrtool
