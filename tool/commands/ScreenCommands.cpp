#include <algorithm>

#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/SqlQuery.h"
#include "tool/io/Message.h"
#include "tool/io/TextTable.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct AddOptions {
  std::string file;
  std::string name;
  std::optional<Rect> rect;
};

struct ListOptions {
  std::string file;
};

std::vector<tovr::ScreenInfoData> screens(Session& session) {
  auto all = session.host().makeRecord<tovr::ScreenInfoDataResult>();
  session.require(session.manager().queryData(all.get()));
  return all->screens;
}

void add(Context& context, const AddOptions& options) {
  Session session = openDatabase(context, options.file);
  Transaction transaction(session);
  const auto present = screens(session);
  if (std::any_of(present.begin(), present.end(),
                  [&](const tovr::ScreenInfoData& screen) { return screen.screenname == options.name; })) {
    throw ToolError(kRefused, "there is a screen '" + options.name + "' already; give another name");
  }
  auto screen = session.host().makeRecord<tovr::ScreenInfoData>();
  // A screen belongs to the database entry that was made last.
  screen->dbid = static_cast<std::int32_t>(queryNumber(session.connection(), "select max(id) from Attach_DB_List"));
  screen->screenname = options.name;
  setRect(*screen, *options.rect);
  session.require(session.manager().insertData(screen.get()));
  transaction.commit();
  session.close();
  message("added the screen " + options.name + " (" + toText(*options.rect) + ")");
}

void list(Context& context, const ListOptions& options) {
  Session session = openDatabase(context, options.file);
  std::vector<Row> rows;
  for (const auto& screen : screens(session)) {
    const Rect rect = rectOf(screen);
    rows.push_back({std::to_string(screen.id), screen.screenname, toText(rect), std::to_string(rect.columns()),
                    std::to_string(rect.rows())});
  }
  context.output.print(textTable({{"id", true}, {"name"}, {"rectangle"}, {"columns", true}, {"rows", true}}, rows));
}

std::string nameFault(const std::string& name) { return name.empty() ? "must not be empty" : ""; }

}  // namespace

void addScreenCommands(CommandGroup& program) {
  CommandGroup group = program.addGroup("screen", "The screens of a database file");
  {
    const auto [command, options] = group.add("add", "Add a screen", &AddOptions::file, add);
    addFile(command, options.file);
    command.add_option("--name", options.name, "The screen's name, unique in the file")->required()->check(nameFault);
    addRect(command, options.rect, "The cells that it covers, both edges inclusive")->required();
  }
  {
    const auto [command, options] = group.add("list", "List the screens", &ListOptions::file, list);
    addFile(command, options.file);
  }
}

}  // namespace tovrtool
