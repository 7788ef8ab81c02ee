#include <fmt/core.h>

#include "tool/cells/CellBlock.h"
#include "tool/cells/CellCsv.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/BlockFiles.h"
#include "tool/database/BlockStore.h"
#include "tool/database/StoredArea.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/FileInput.h"
#include "tool/io/Message.h"
#include "tool/io/TextTable.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct AreaOptions {
  std::optional<std::int32_t> type;
  std::string screen;
  std::optional<Rect> rect;
};

struct PutOptions {
  std::string file;
  AreaOptions area;
  std::string array;
  std::string raw;
  std::int32_t cellBytes = 0;
  std::optional<CellPair> position;
  BlockText text;
  bool update = false;
  std::string manifest;  // instead of one block
  std::string folder;
};

struct GetOptions {
  std::string file;
  AreaOptions area;
  OutputOptions output;
  Dtype dtype = parseDtype("uint8");
  bool raw = false;
  bool csv = false;
};

struct ListOptions {
  std::string file;
};

constexpr char kBulkHelp[] =
    "Many blocks at once, all of them or none, in one transaction:\n"
    "  --manifest FILE  a JSON list of {\"file\": \"a.npy\", \"type\": 1, \"rect\": [L, T, R, B]} and, where wanted,\n"
    "                   \"screen\", \"area\" and \"version\"; files lie in the manifest's folder or below it\n"
    "  --folder DIR     its .npy files, named T<type>_<L>,<T>,<R>,<B>.npy, with <screen>_ in front in databases of\n"
    "                   type 1: left_T1_0,0,1919,1079.npy; other files are left alone";

// What the command line of one block says, and that of many does not.
void requireBlock(const PutOptions& options) {
  if (!options.area.type) throw ToolError(kUsage, "--type is required");
  if (options.array.empty() == options.raw.empty()) throw ToolError(kUsage, "BLOCK or --raw is required");
  if (!options.area.rect && !options.position) throw ToolError(kUsage, "--rect or --at is required");
}

CellBlock readBlock(const PutOptions& options) {
  if (!options.raw.empty()) {
    return blockFromBytes(readWholeFile(options.raw), *options.area.rect, options.cellBytes);
  }
  return blockFromArray(parseNpy(readWholeFile(options.array), options.array), options.area.rect, options.position);
}

void putOne(Context& context, const PutOptions& options) {
  requireBlock(options);
  const CellBlock block = readBlock(options);
  Session session = openDatabase(context, options.file);
  const StoreReport report = storeBlock(session, {*options.area.type, options.area.screen, block.rect}, options.text,
                                        block, options.update ? StoreMode::kUpdate : StoreMode::kInsert);
  session.close();
  message("stored {}, {} bytes per cell, under block key {}", toText(block.rect), block.cellBytes, report.blockId);
  if (report.screenAdded) {
    message("note: there was no screen {}; it was added with this rectangle", options.area.screen);
  }
  if (report.hiddenBy) {
    message(
        fmt::format("note: area {} ({}) of the same type was stored before and holds this rectangle: coef get answers "
                    "from it",
                    report.hiddenBy->id, toText(report.hiddenBy->rect)));
  }
}

void putMany(Context& context, const PutOptions& options) {
  const auto files = options.manifest.empty() ? blocksOfFolder(options.folder) : blocksOfManifest(options.manifest);
  if (files.empty()) throw ToolError(kFileProblem, "there are no blocks to store");
  Session session = openDatabase(context, options.file);
  {
    Progress progress("coef put", bytesOf(files));
    storeFiles(session, files, progress);
  }
  session.close();
  message("stored {} blocks", files.size());
}

void put(Context& context, const PutOptions& options) {
  const bool many = !options.manifest.empty() || !options.folder.empty();
  return many ? putMany(context, options) : putOne(context, options);
}

void get(Context& context, const GetOptions& options) {
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  const CellBlock block = fetchBlock(session, {*options.area.type, options.area.screen, *options.area.rect});
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

CLI::Option* addArea(CLI::App& command, AreaOptions& options) {
  command.add_option("--screen", options.screen, "The screen's name, in databases of type 1");
  return command.add_option("--type", options.type, "The coefficient type (not 16, which means none)");
}

// Many blocks at once: what else describes one block is in the manifest, or in the names.
void addMany(CLI::App& command, PutOptions& options) {
  CLI::Option* manifest =
      command.add_option("--manifest", options.manifest, "Instead, many blocks: a JSON list of them");
  CLI::Option* folder =
      command.add_option("--folder", options.folder, "Instead, many blocks: the .npy files of a folder");
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

void addPut(CommandGroup& group) {
  const auto [command, options] =
      group.add("put", "Store a block of cells; the same rectangle and type replaces it", &PutOptions::file, put);
  addFile(command, options.file);
  addArea(command, options.area);
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
  addMany(command, options);
}

void addGet(CommandGroup& group) {
  const auto [command, options] =
      group.add("get", "Read a rectangle of cells out of a stored block", &GetOptions::file, get);
  addFile(command, options.file);
  addArea(command, options.area)->required();
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
  addPut(group);
  addGet(group);
  const auto [command, options] = group.add("list", "List the stored areas", &ListOptions::file, list);
  addFile(command, options.file);
  addCoefStatsCommand(group);
}

}  // namespace tovrtool
