#include "tool/commands/coef/CellArguments.h"

#include "client/base/Text.h"
#include "client/reading/NumberForms.h"
#include "tool/commands/Arguments.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {

void addForm(CLI::App& command, FormOptions& options, const std::string& dtypeDescription) {
  addDtype(command, options.dtype, dtypeDescription);
  addParsed(command, "--scale", options.scale, parseScale, "What 1 stands for: 1/16384, 0.5 [as kept with the block]")
      ->type_name("NUMBER");
  addParsed(command, "--unit", options.unit, parseUnit, "The unit of the scaled numbers [as kept with the block]")
      ->type_name("TEXT");
}

void addCells(CLI::App& command, CellQuery& query) {
  CLI::Option* type = addCoefType(command, query.type);
  CLI::Option* screen =
      command.add_option("--screen", query.screen, "The screen's name; needed in databases of type 1");
  addRect(command, query.rect, "The cells, both edges inclusive [the whole area, if there is one]");
  CLI::Option* mosaic =
      command.add_flag("--mosaic", query.mosaic, "Read across areas; where they overlap, the first stored one counts");
  command.add_option("--fill", query.fill, "With --mosaic: the number, as stored, of cells that no area covers")
      ->type_name("NUMBER")
      ->needs(mosaic);
  command.add_option("--area", query.areaId, "Instead of --type: the area with this id, as coef list shows it")
      ->type_name("ID")
      ->excludes(type)
      ->excludes(screen)
      ->excludes(mosaic);
  addForm(command, query.form, "Type of the numbers in a cell (uint16, float32, ...) [as kept with the block]");
}

void noteAnswer(const CellAnswer& answer, const FormOptions& options) {
  if (answer.overlapping) message("note: areas overlap; where they do, the one that was stored first counts");
  if (answer.filled > 0)
    message("note: filled {} that no area covers", counted(static_cast<std::size_t>(answer.filled), "cell"));
  for (const StoredArea& area : answer.areas) {
    const auto kept = keptForm(area);
    if (!options.dtype || !kept || *options.dtype == kept->dtype) continue;
    message("note: area {} keeps its numbers as {}; their bytes are read as {}, as was asked for", area.id,
            toText(*kept), nameOf(*options.dtype));
    break;
  }
}

}  // namespace tovrdb::tool
