#include <stdexcept>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/storing/Removal.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  std::vector<IdRange> ids;
  std::optional<Rect> rect;
  AreaFilter filter;
  bool force = false;
};

Removal chosen(Session& session, const Options& options) {
  if (!options.ids.empty()) return areasOfIds(session, options.ids);
  if (!options.rect) return areasOf(session, options.filter);
  return areaAt(session, {*options.filter.type, options.filter.screen, *options.rect});
}

void deleteAreas(Context& context, const Options& options) {
  const bool filtered = options.filter.type || !options.filter.screen.empty();
  if (options.ids.empty() && !filtered) {
    throw Error(kInvalid, "say which areas with --id, or with --type and --screen; tovrdb coef list shows the areas");
  }
  if (options.rect && !options.filter.type) throw Error(kInvalid, "--rect goes with --type");
  Session session = openDatabase(context, options.file);
  const Removal removal = chosen(session, options);
  confirmDeletion(toTexts(removal), options.force);
  applyChanges(session, [&](Session& file) { return planRemoval(file, removal); });
  session.close();
  message("deleted {}", counted(removal.areas.size(), "area"));
}

}  // namespace

void addCoefDeleteCommand(CommandGroup& coef) {
  const auto [command, options] = coef.add("delete", "Delete areas and their blocks", &Options::file, deleteAreas);
  addFile(command, options.file);
  CLI::Option* ids = command.add_option_function<std::vector<std::string>>(
      "--id",
      [&options = options](const std::vector<std::string>& texts) {
        try {
          for (const std::string& text : texts) options.ids.push_back(parseIdRange(text));
        } catch (const std::invalid_argument& error) {
          throw CLI::ValidationError("--id", error.what());
        }
      },
      "The areas' ids, as coef list shows them: 3 or 5-8");
  ids->delimiter(',')->allow_extra_args(false)->type_name("ID,...");
  addCoefType(command, options.filter.type)->excludes(ids)->description("All areas of this coefficient type");
  command.add_option("--screen", options.filter.screen, "All areas, or those of --type, of this screen")->excludes(ids);
  addRect(command, options.rect, "With --type, only the area of exactly this rectangle")->excludes(ids);
  addForcedDeletion(command, options.force);
}

}  // namespace tovrdb::tool
