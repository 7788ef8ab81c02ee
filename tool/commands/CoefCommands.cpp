#include <fmt/core.h>

#include "tool/cells/CellBlock.h"
#include "tool/cells/CellCsv.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/BlockStore.h"
#include "tool/database/StoredArea.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/Message.h"
#include "tool/io/TextTable.h"

namespace tovrtool {
namespace {

struct ListOptions {
  std::string file;
};

struct GetOptions {
  std::string file;
  std::int32_t type = 0;
  std::string screen;
  std::optional<Rect> rect;
  OutputOptions output;
  Dtype dtype = parseDtype("uint8");
  bool raw = false;
  bool csv = false;
};

void get(Context& context, const GetOptions& options) {
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  const CellBlock block = fetchBlock(session, {options.type, options.screen, *options.rect});
  if (options.csv) {
    writeCsv(block, options.dtype, [&output](const std::string& text) { output.write(text); });
  } else {
    if (!options.raw) output.write(npyHeader(options.dtype, blockShape(block.rect, block.cellBytes, options.dtype)));
    output.write(block.bytes.get(), block.size());
  }
  output.commit();
  if (options.raw) message("{}, {} bytes per cell", toText(block.rect), block.cellBytes);
}

void list(Context& context, const ListOptions& options) {
  Session session = openDatabase(context, options.file);
  TextRows rows;
  for (const StoredArea& area : storedAreas(session)) {
    rows.push_back({std::to_string(area.id), area.screen, std::to_string(area.type), std::to_string(area.number),
                    toText(area.rect), std::to_string(area.blockId), std::to_string(area.cellBytes),
                    std::to_string(area.storedBytes), area.version});
  }
  context.output.print(textTable({{"id", true},
                                  {"screen"},
                                  {"type", true},
                                  {"area", true},
                                  {"rectangle"},
                                  {"block", true},
                                  {"cell bytes", true},
                                  {"stored bytes", true},
                                  {"version"}},
                                 rows));
}

void addGet(CommandGroup& group) {
  const auto [command, options] =
      group.add("get", "Read a rectangle of cells out of a stored block", &GetOptions::file, get);
  addFile(command, options.file);
  addScreenName(command, options.screen);
  addCoefType(command, options.type)->required();
  addRect(command, options.rect, "The cells, both edges inclusive")->required();
  addOutput(command, options.output);
  CLI::Option* dtype = addDtype(command, options.dtype,
                                "Type of the numbers in a cell (uint16, float32, ...); it is not stored [uint8]");
  CLI::Option* raw = command.add_flag("--raw", options.raw, "Write the bare cells without a header")->excludes(dtype);
  command.add_flag("--csv", options.csv, "Write text: a line per cell, its column, row and values")->excludes(raw);
}

}  // namespace

void addCoefCommands(CommandGroup& program) {
  CommandGroup group = program.addGroup("coef", "Blocks of coefficient cells");
  addCoefPutCommand(group);
  addGet(group);
  const auto [command, options] = group.add("list", "List the stored areas", &ListOptions::file, list);
  addFile(command, options.file);
  addCoefDeleteCommand(group);
  addCoefStatsCommand(group);
}

}  // namespace tovrtool
