#include "client/base/Text.h"
#include "client/checks/JsonForms.h"
#include "client/contents/Screens.h"
#include "client/storing/Additions.h"
#include "client/storing/Removal.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/Message.h"
#include "tool/io/TextTable.h"

namespace tovrdb::tool {
namespace {

struct AddOptions {
  std::string file;
  std::string name;
  std::optional<Rect> rect;
  bool force = false;
};

struct RenameOptions {
  std::string file;
  std::string name;
  std::string newName;
  bool force = false;
};

struct DeleteOptions {
  std::string file;
  std::string name;
  bool withAreas = false;
  bool force = false;
};

struct ListOptions {
  std::string file;
  bool json = false;
};

void add(Context& context, const AddOptions& options) {
  Session session = openDatabase(context, options.file);
  applyChanges(session, [&](Session& file) { return planNewScreen(file, options.name, *options.rect, options.force); });
  session.close();
  message("added the screen {} ({})", options.name, toText(*options.rect));
}

void rename(Context& context, const RenameOptions& options) {
  Session session = openDatabase(context, options.file);
  applyChanges(session,
               [&](Session& file) { return planScreenName(file, options.name, options.newName, options.force); });
  session.close();
  message("the screen {} is now named {}", options.name, options.newName);
}

void deleteScreen(Context& context, const DeleteOptions& options) {
  Session session = openDatabase(context, options.file);
  const Removal removal = screenOf(session, options.name, options.withAreas);
  confirmDeletion(toTexts(removal), options.force);
  applyChanges(session, [&](Session& file) { return planRemoval(file, removal); });
  session.close();
  message("deleted the screen {} and {}", options.name, counted(removal.areas.size(), "area"));
  if (!removal.note.empty()) message(removal.note);
}

std::string asJson(const std::vector<StoredScreen>& screens) {
  Json list = Json::array();
  for (const StoredScreen& screen : screens) {
    list.push_back({{"id", screen.id},
                    {"name", screen.name},
                    {"rect", rectJson(screen.rect)},
                    {"columns", columnsOf(screen.rect)},
                    {"rows", rowsOf(screen.rect)}});
  }
  return jsonText(list);
}

std::string asText(const std::vector<StoredScreen>& screens) {
  TextRows rows;
  for (const StoredScreen& screen : screens) {
    rows.push_back({std::to_string(screen.id), screen.name, toText(screen.rect), std::to_string(columnsOf(screen.rect)),
                    std::to_string(rowsOf(screen.rect))});
  }
  return textTable({{"id", true}, {"name"}, {"rectangle"}, {"columns", true}, {"rows", true}}, rows);
}

void list(Context& context, const ListOptions& options) {
  Session session = openDatabase(context, options.file);
  const std::vector<StoredScreen> screens = storedScreens(session);
  context.output.print(options.json ? asJson(screens) : asText(screens));
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
    command.add_flag(
        "--force", options.force,
        "Add it even if an older screen hides all of it (type 0), or if its name looks like a slip of another");
  }
  {
    const auto [command, options] =
        group.add("rename", "Rename a screen; its areas and data stay with it", &RenameOptions::file, rename);
    addFile(command, options.file);
    command.add_option("OLD", options.name, "The screen's name")->required();
    command.add_option("NEW", options.newName, "Its new name, unique in the file")->required()->check(nameFault);
    command.add_flag("--force", options.force, "Take the name even if it looks like a slip of another");
  }
  {
    const auto [command, options] = group.add("delete", "Delete a screen", &DeleteOptions::file, deleteScreen);
    addFile(command, options.file);
    command.add_option("--name", options.name, "The screen's name")->required();
    command.add_flag("--with-areas", options.withAreas, "Delete the areas that are on it, too");
    addForcedDeletion(command, options.force);
  }
  {
    const auto [command, options] = group.add("list", "List the screens", &ListOptions::file, list);
    addFile(command, options.file);
    addJsonFlag(command, options.json);
  }
}

}  // namespace tovrdb::tool
