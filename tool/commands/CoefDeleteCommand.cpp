#include <fmt/core.h>

#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/Confirmation.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/Removal.h"
#include "tool/io/Message.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  std::vector<std::int64_t> ids;
  std::optional<Rect> rect;
  std::optional<std::int32_t> type;
  std::string screen;
  bool force = false;
};

void deleteAreas(Context& context, const Options& options) {
  if (options.ids.empty() && !(options.rect && options.type)) {
    throw ToolError(kUsage, "say which area with --id, or with --rect and --type; tovrdb coef list shows the areas");
  }
  Session session = openDatabase(context, options.file);
  const Removal removal = options.ids.empty() ? areaAt(session, {*options.type, options.screen, *options.rect})
                                              : areasOfIds(session, options.ids);
  confirmDeletion(toTexts(removal), options.force, "--force");
  deleteRows(session, removal);
  session.close();
  message("deleted {} {}", removal.areas.size(), removal.areas.size() == 1 ? "area" : "areas");
}

}  // namespace

void addCoefDeleteCommand(CommandGroup& coef) {
  const auto [command, options] = coef.add("delete", "Delete areas and their blocks", &Options::file, deleteAreas);
  addFile(command, options.file);
  CLI::Option* ids = command.add_option("--id", options.ids, "The areas' ids, as coef list shows them");
  ids->delimiter(',')->allow_extra_args(false)->type_name("ID,...");
  addRect(command, options.rect, "Instead, exactly the area's rectangle")->excludes(ids);
  command.add_option("--type", options.type, "The area's coefficient type")->excludes(ids);
  command.add_option("--screen", options.screen, "The screen's name, in databases of type 1")->excludes(ids);
  addForcedDeletion(command, options.force);
}

}  // namespace tovrtool
