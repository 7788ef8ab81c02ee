
#include "tool/cells/CellBlock.h"
#include "tool/cells/CellCsv.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/CoefArea.h"
#include "tool/database/SqlQuery.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/Message.h"
#include "tool/io/TextTable.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct ListOptions {
  std::string file;
};

struct GetOptions {
  std::string file;
  AreaOptions area;
  OutputOptions output;
  Dtype dtype = parseDtype("uint8");
  bool raw = false;
  bool csv = false;
};

void get(Context& context, const GetOptions& options) {
  const Rect rect = *options.area.rect;
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  auto record = session.host().makeRecord<tovr::CoefData>();
  fillArea(session, options.area, rect, *record);
  const int code = session.manager().queryData(record.get());
  const std::unique_ptr<unsigned char[]> cells(record->coefBuffer.data);
  requireArea(session, code, options.area, rect);

  const std::int32_t cellBytes = record->coefBuffer.databitwidth;
  if (cellBytes <= 0 || record->coefBuffer.datasize <= 0) {
    throw ToolError(kRefused, "the stored block is damaged: its cells have " + std::to_string(cellBytes) + " bytes");
  }
  if (options.csv) {
    writeCsv(cells.get(), rect, cellBytes, options.dtype, [&output](const std::string& text) { output.write(text); });
  } else {
    if (!options.raw) output.write(npyHeader(options.dtype, blockShape(rect, cellBytes, options.dtype)));
    output.write(cells.get(), static_cast<std::size_t>(record->coefBuffer.datasize));
  }
  output.commit();
  if (options.raw) message(toText(rect) + ", " + std::to_string(cellBytes) + " bytes per cell");
}

void list(Context& context, const ListOptions& options) {
  Session session = openDatabase(context, options.file);
  std::vector<Row> rows = queryRows(
      session.connection(),
      "select i.id, s.screenname, i.coeftype, i.areaid, i.left || ',' || i.top || '..' || i.right || ',' || i.bottom,"
      " i.coefid, c.databitwidth, length(c.data), c.version from Coef_Info i left join Screen_Info s on"
      " s.id = i.screenid left join Coef c on c.id = i.coefid order by i.id");
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

void addArea(CLI::App& command, AreaOptions& options) {
  command.add_option("--screen", options.screen, "The screen's name, in databases of type 1");
}

constexpr char kTypeHelp[] = "The coefficient type (not 16, which means none)";

void addGet(CommandGroup& group) {
  const auto [command, options] =
      group.add("get", "Read a rectangle of cells out of a stored block", &GetOptions::file, get);
  addFile(command, options.file);
  addArea(command, options.area);
  command.add_option("--type", options.area.type, kTypeHelp)->required();
  addRect(command, options.area.rect, "The cells, both edges inclusive")->required();
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
  addCoefStatsCommand(group);
}

}  // namespace tovrtool
