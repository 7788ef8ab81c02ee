#include "tool/cells/CellBlock.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/CellArguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/BlockFiles.h"
#include "tool/database/BlockStore.h"
#include "tool/io/FileInput.h"
#include "tool/io/Message.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct PutOptions {
  std::string file;
  std::optional<std::int32_t> type;
  std::string screen;
  std::optional<Rect> rect;
  std::string array;
  std::string raw;
  std::int32_t cellBytes = 0;
  std::optional<CellPair> position;
  BlockText text;
  bool update = false;
  std::string manifest;  // instead of one block
  std::string folder;
};

constexpr char kBulkHelp[] =
    "Many blocks at once, all of them or none, in one transaction:\n"
    "  --manifest FILE  a JSON list of {\"file\": \"a.npy\", \"type\": 1, \"rect\": [L, T, R, B]} and, where wanted,\n"
    "                   \"screen\", \"area\" and \"version\"; files lie in the manifest's folder or below it\n"
    "  --folder DIR     its .npy files, named T<type>_<L>,<T>,<R>,<B>.npy, with <screen>_ in front in databases of\n"
    "                   type 1: left_T1_0,0,1919,1079.npy; other files are left alone";

// What the command line of one block says, and that of many does not.
void requireBlock(const PutOptions& options) {
  if (!options.type) throw ToolError(kUsage, "--type is required");
  if (options.array.empty() == options.raw.empty()) throw ToolError(kUsage, "BLOCK or --raw is required");
  if (!options.rect && !options.position) throw ToolError(kUsage, "--rect or --at is required");
}

// And the type of its numbers, where the file tells it.
CellBlock readBlock(const PutOptions& options, std::optional<Dtype>& dtype) {
  if (!options.raw.empty()) {
    return blockFromBytes(readWholeFile(options.raw), *options.rect, options.cellBytes);
  }
  NpyArray array = parseNpy(readWholeFile(options.array), options.array);
  dtype = array.dtype;
  return blockFromArray(std::move(array), options.rect, options.position);
}

void putOne(Context& context, const PutOptions& options) {
  requireBlock(options);
  BlockText text = options.text;
  const CellBlock block = readBlock(options, text.dtype);
  Session session = openDatabase(context, options.file);
  const StoreReport report = storeBlock(session, {*options.type, options.screen, block.rect}, text, block,
                                        options.update ? StoreMode::kUpdate : StoreMode::kInsert);
  session.close();
  message("stored {}, {} bytes per cell, under block key {}", toText(block.rect), block.cellBytes, report.blockId);
  if (report.screenAdded) {
    message("note: there was no screen {}; it was added with this rectangle", options.screen);
  }
  if (report.hiddenBy) {
    message("note: area {} ({}) of the same type was stored before and holds this rectangle: coef get answers from it",
            report.hiddenBy->id, toText(report.hiddenBy->rect));
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

}  // namespace

void addCoefPutCommand(CommandGroup& coef) {
  const auto [command, options] =
      coef.add("put", "Store a block of cells; the same rectangle and type replaces it", &PutOptions::file, put);
  addFile(command, options.file);
  addScreenName(command, options.screen);
  addCoefType(command, options.type);
  CLI::Option* array =
      command.add_option("BLOCK", options.array, "A .npy array, rows x columns (x values); - is standard input");
  CLI::Option* raw = command.add_option("--raw", options.raw, "Instead, a file of bare cells, row after row");
  CLI::Option* cellBytes = command.add_option("--cell-bytes", options.cellBytes, "Bytes per cell of a --raw file")
                               ->check(CLI::PositiveNumber);
  CLI::Option* rect = addRect(command, options.rect, "The cells, both edges inclusive");
  CLI::Option* at = addPosition(command, "--at", options.position, "Instead, where the array's first cell lies");
  raw->needs(cellBytes)->needs(rect)->excludes(array);
  cellBytes->needs(raw);
  at->excludes(rect);
  command.add_option("--area", options.text.number,
                     "An area number. Blocks with a number are added beside what is there, never in its place");
  command.add_option("--version-text", options.text.version, "Text kept with the block");
  addForm(command, options.text.form, "Kept with the block: the type of the numbers in a cell [an array's own]");
  command.add_flag("--update", options.update,
                   "Rewrite what is stored and add nothing. The rectangle is the whole screen's (type 0), or becomes "
                   "the screen's (type 1)");
  addMany(command, options);
}

}  // namespace tovrtool
