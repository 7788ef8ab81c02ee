#include "tool/cells/CellBlock.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/BulkPut.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/CoefArea.h"
#include "tool/database/SqlQuery.h"
#include "tool/io/FileInput.h"
#include "tool/io/Message.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct PutOptions {
  std::string file;
  std::optional<std::int32_t> type;  // of the only block
  AreaOptions area;
  std::string array;
  std::string raw;
  std::int32_t cellBytes = 0;
  std::optional<CellPair> position;
  BlockText text;
  BulkSource bulk;
  bool update = false;
};

std::vector<tovr::CoefData> areas(Session& session) {
  auto all = session.host().makeRecord<tovr::CoefDataResult>();
  session.require(session.manager().queryData(all.get()));
  return all->coefs;
}

// What the command line of one block says, and that of many does not.
void requireBlock(const PutOptions& options) {
  if (!options.type) throw ToolError(kUsage, "--type is required");
  if (options.array.empty() == options.raw.empty()) throw ToolError(kUsage, "BLOCK or --raw is required");
  if (!options.area.rect && !options.position) throw ToolError(kUsage, "--rect or --at is required");
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
  if (options.bulk.isGiven()) return putAll(context, options.file, options.bulk);
  requireBlock(options);
  CellBlock block = readBlock(options);
  Session session = openDatabase(context, options.file);
  AreaOptions area = options.area;
  area.type = *options.type;
  const auto record = recordOf(session, area, options.text, block);
  const std::string countScreens = "select count(*) from Screen_Info";
  const std::int64_t screens = queryNumber(session.connection(), countScreens);

  Transaction transaction(session);
  tovr::IDBManager& manager = session.manager();
  const int code = options.update ? manager.updateData(record.get()) : manager.insertData(record.get());
  requireArea(session, code, area, block.rect);
  transaction.commit();
  message("stored " + toText(block.rect) + ", " + std::to_string(block.cellBytes) +
          " bytes per cell, under block key " + std::to_string(record->coefid));
  if (queryNumber(session.connection(), countScreens) > screens) {
    message("note: there was no screen " + options.area.screen + "; it was added with this rectangle");
  }
  warnWhenHidden(session, *record);
  session.close();
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

}  // namespace

void addCoefPutCommand(CommandGroup& coef) {
  const auto [command, options] =
      coef.add("put", "Store a block of cells; the same rectangle and type replaces it", &PutOptions::file, put);
  addFile(command, options.file);
  command.add_option("--screen", options.area.screen, "The screen's name, in databases of type 1");
  command.add_option("--type", options.type, "The coefficient type (not 16, which means none)");
  CLI::Option* array =
      command.add_option("BLOCK", options.array, "A .npy array, rows x columns (x values); - is standard input");
  CLI::Option* raw = command.add_option("--raw", options.raw, "Instead, a file of bare cells, row after row");
  CLI::Option* cellBytes = command.add_option("--cell-bytes", options.cellBytes, "Bytes per cell of a --raw file")
                               ->check(CLI::PositiveNumber);
  CLI::Option* rect = addRect(command, options.area.rect, "The cells, both edges inclusive");
  CLI::Option* at = addPosition(command, "--at", options.position, "Instead, where the array's first cell lies");
  raw->needs(cellBytes)->needs(rect)->excludes(array);
  cellBytes->needs(raw);
  at->excludes(rect);
  command.add_option("--area", options.text.number,
                     "An area number. Blocks with a number are added beside what is there, never in its place");
  command.add_option("--version-text", options.text.version, "Text kept with the block");
  command.add_flag("--update", options.update,
                   "Rewrite what is stored and add nothing. The rectangle is the whole screen's (type 0), or becomes "
                   "the screen's (type 1)");
  addBulk(command, options.bulk);
}

}  // namespace tovrtool
