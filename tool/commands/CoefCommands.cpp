#include "tool/commands/CoefCommands.h"

#include <memory>

#include "tool/commands/Arguments.h"
#include "tool/commands/BulkPut.h"
#include "tool/database/CoefArea.h"
#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"
#include "tool/files/ByteOutput.h"
#include "tool/files/FileInput.h"
#include "tool/files/Message.h"
#include "tool/forms/CellBlock.h"
#include "tool/forms/CellCsv.h"
#include "tool/forms/TextTable.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct PutOptions {
  AreaOptions area;
  std::string array;
  std::string raw;
  std::int32_t cellBytes = 0;
  std::optional<CellPair> position;
  BlockText text;
  BulkSource bulk;
  bool update = false;
};

struct GetOptions {
  AreaOptions area;
  OutputOptions output;
  std::string dtype = "uint8";
  bool raw = false;
  bool csv = false;
};

std::vector<tovr::CoefData> areas(Session& session) {
  auto all = session.host().makeRecord<tovr::CoefDataResult>();
  session.require(session.manager().queryData(all.get()));
  return all->coefs;
}

CellBlock readBlock(const PutOptions& options) {
  if (!options.raw.empty()) {
    return blockFromBytes(readWholeFile(options.raw), *options.area.rect, options.cellBytes);
  }
  return blockFromArray(parseNpy(readWholeFile(options.array), options.array), options.area.rect, options.position);
}

// The library answers a rectangle from the first area that holds it, so an older one can hide a new one.
void warnWhenHidden(Session& session, const tovr::CoefData& record) {
  for (const auto& area : areas(session)) {
    if (area.screenid != record.screenid || area.coeftype != record.coeftype) continue;
    if (!rectOf(area).holds(rectOf(record))) continue;
    if (area.coefid != record.coefid) {
      message("note: area " + std::to_string(area.id) + " (" + toText(rectOf(area)) +
              ") of the same type was stored before and holds this rectangle: coef get answers from it");
    }
    return;
  }
}

void put(Context& context, const PutOptions& options) {
  if (options.bulk.isGiven()) return putAll(context, options.area.file, options.bulk);
  CellBlock block = readBlock(options);
  Session session = Session::openExisting(context, options.area.file);
  const auto record = recordOf(session, options.area, options.text, block);
  const std::string countScreens = "select count(*) from Screen_Info";
  const std::int64_t screens = queryNumber(session.connection(), countScreens);

  Transaction transaction(session);
  tovr::IDBManager& manager = session.manager();
  const int code = options.update ? manager.updateData(record.get()) : manager.insertData(record.get());
  requireArea(session, code, options.area, block.rect);
  transaction.commit();
  message("stored " + toText(block.rect) + ", " + std::to_string(block.cellBytes) +
          " bytes per cell, under block key " + std::to_string(record->coefid));
  if (queryNumber(session.connection(), countScreens) > screens) {
    message("note: there was no screen " + options.area.screen + "; it was added with this rectangle");
  }
  warnWhenHidden(session, *record);
  session.close();
}

void get(Context& context, const GetOptions& options) {
  const Rect rect = *options.area.rect;
  const Dtype dtype = parseDtype(options.dtype);
  ByteOutput output(context.output, options.output, options.area.file);
  Session session = Session::openExisting(context, options.area.file);
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
    writeCsv(cells.get(), rect, cellBytes, dtype, [&output](const std::string& text) { output.write(text); });
  } else {
    if (!options.raw) output.write(npyHeader(dtype, blockShape(rect, cellBytes, dtype)));
    output.write(cells.get(), static_cast<std::size_t>(record->coefBuffer.datasize));
  }
  output.commit();
  if (options.raw) message(toText(rect) + ", " + std::to_string(cellBytes) + " bytes per cell");
}

void list(Context& context, const std::string& file) {
  Session session = Session::openExisting(context, file);
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

CLI::Option* addArea(CLI::App& command, AreaOptions& options) {
  addFile(command, options.file);
  command.add_option("--screen", options.screen, "The screen's name, in databases of type 1");
  return command.add_option("--type", options.type, "The coefficient type (not 16, which means none)")->required();
}

// Many blocks at once: what else describes one block is in the manifest, or in the names.
void addBulk(CLI::App& command, BulkSource& bulk) {
  CLI::Option* manifest = command.add_option("--manifest", bulk.manifest, "Instead, many blocks: a JSON list of them");
  CLI::Option* folder = command.add_option("--folder", bulk.folder, "Instead, many blocks: the .npy files of a folder");
  manifest->type_name("FILE")->excludes(folder);
  folder->type_name("DIR");
  for (CLI::Option* option : command.get_options()) {
    const bool common = option->get_name() == "--help" || option->get_name() == "FILE";
    if (option == manifest || option == folder || common) continue;
    manifest->excludes(option);
    folder->excludes(option);
  }
  command.footer(kBulkHelp);
}

void addPut(CLI::App& group, Command& chosen) {
  auto options = std::make_shared<PutOptions>();
  CLI::App* command = group.add_subcommand("put", "Store a block of cells; the same rectangle and type replaces it");
  CLI::Option* type = addArea(*command, options->area);
  type->required(false);
  CLI::Option* array =
      command->add_option("BLOCK", options->array, "A .npy array, rows x columns (x values); - is standard input");
  CLI::Option* raw = command->add_option("--raw", options->raw, "Instead, a file of bare cells, row after row");
  CLI::Option* cellBytes = command->add_option("--cell-bytes", options->cellBytes, "Bytes per cell of a --raw file")
                               ->check(CLI::PositiveNumber);
  CLI::Option* rect = addRect(*command, options->area.rect, "The cells, both edges inclusive");
  CLI::Option* at = addPosition(*command, "--at", options->position, "Instead, where the array's first cell lies");
  raw->needs(cellBytes)->needs(rect)->excludes(array);
  cellBytes->needs(raw);
  at->excludes(rect);
  command->add_option("--area", options->text.number,
                      "An area number. Blocks with a number are added beside what is there, never in its place");
  command->add_option("--version-text", options->text.version, "Text kept with the block");
  command->add_flag("--update", options->update,
                    "Rewrite what is stored and add nothing. The rectangle is the whole screen's (type 0), or becomes "
                    "the screen's (type 1)");
  addBulk(*command, options->bulk);
  command->callback([&chosen, options, type] {
    if (!options->bulk.isGiven()) {
      if (type->count() == 0) throw CLI::RequiredError("--type");
      if (options->array.empty() == options->raw.empty()) throw CLI::RequiredError("BLOCK or --raw");
      if (!options->area.rect && !options->position) throw CLI::RequiredError("--rect or --at");
    }
    chosen = {"coef put " + options->area.file, [options](Context& context) { put(context, *options); }};
  });
}

void addGet(CLI::App& group, Command& chosen) {
  auto options = std::make_shared<GetOptions>();
  CLI::App* command = group.add_subcommand("get", "Read a rectangle of cells out of a stored block");
  addArea(*command, options->area);
  addRect(*command, options->area.rect, "The cells, both edges inclusive")->required();
  addOutput(*command, options->output);
  CLI::Option* dtype = command
                           ->add_option("--dtype", options->dtype,
                                        "Type of the numbers in a cell (uint16, float32, ...); it is not stored")
                           ->capture_default_str()
                           ->check([](const std::string& name) {
                             try {
                               return parseDtype(name), std::string();
                             } catch (const std::invalid_argument& error) {
                               return std::string(error.what());
                             }
                           });
  CLI::Option* raw = command->add_flag("--raw", options->raw, "Write the bare cells without a header")->excludes(dtype);
  command->add_flag("--csv", options->csv, "Write text: a line per cell, its column, row and values")->excludes(raw);
  command->callback([&chosen, options] {
    chosen = {"coef get " + options->area.file, [options](Context& context) { get(context, *options); }};
  });
}

}  // namespace

void addCoefCommands(CLI::App& app, Command& chosen) {
  CLI::App* group = app.add_subcommand("coef", "Blocks of coefficient cells")->require_subcommand(1);
  addPut(*group, chosen);
  addGet(*group, chosen);
  auto file = std::make_shared<std::string>();
  CLI::App* command = group->add_subcommand("list", "List the stored areas");
  addFile(*command, *file);
  command->callback([&chosen, file] {
    chosen = {"coef list " + *file, [file](Context& context) { list(context, *file); }};
  });
}

}  // namespace tovrtool
