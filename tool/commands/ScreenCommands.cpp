#include "tool/commands/ScreenCommands.h"

#include <algorithm>
#include <memory>

#include "tool/commands/Arguments.h"
#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"
#include "tool/files/Message.h"
#include "tool/forms/TextTable.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct AddOptions {
  std::string file;
  std::string name;
  std::optional<Rect> rect;
};

std::vector<tovr::ScreenInfoData> screens(Session& session) {
  auto all = session.host().makeRecord<tovr::ScreenInfoDataResult>();
  session.require(session.manager().queryData(all.get()));
  return all->screens;
}

void add(Context& context, const AddOptions& options) {
  Session session = Session::openExisting(context, options.file);
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

void list(Context& context, const std::string& file) {
  Session session = Session::openExisting(context, file);
  std::vector<Row> rows;
  for (const auto& screen : screens(session)) {
    const Rect rect = rectOf(screen);
    rows.push_back({std::to_string(screen.id), screen.screenname, toText(rect), std::to_string(rect.columns()),
                    std::to_string(rect.rows())});
  }
  context.output.print(textTable({{"id", true}, {"name"}, {"rectangle"}, {"columns", true}, {"rows", true}}, rows));
}

}  // namespace

void addScreenCommands(CLI::App& app, Command& chosen) {
  CLI::App* group = app.add_subcommand("screen", "The screens of a database file")->require_subcommand(1);

  auto options = std::make_shared<AddOptions>();
  CLI::App* command = group->add_subcommand("add", "Add a screen");
  addFile(*command, options->file);
  command->add_option("--name", options->name, "The screen's name, unique in the file")
      ->required()
      ->check([](const std::string& name) { return name.empty() ? "must not be empty" : std::string(); });
  addRect(*command, options->rect, "The cells that it covers, both edges inclusive")->required();
  command->callback([&chosen, options] {
    chosen = {"screen add " + options->file, [options](Context& context) { add(context, *options); }};
  });

  auto file = std::make_shared<std::string>();
  command = group->add_subcommand("list", "List the screens");
  addFile(*command, *file);
  command->callback([&chosen, file] {
    chosen = {"screen list " + *file, [file](Context& context) { list(context, *file); }};
  });
}

}  // namespace tovrtool
