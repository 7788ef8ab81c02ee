#include <algorithm>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/base/Text.h"
#include "client/cells/CellBlock.h"
#include "client/files/NewFiles.h"
#include "client/session/FileDiagnosis.h"
#include "client/storing/BlockFiles.h"
#include "client/storing/StoreBlocks.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/io/Terminal.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  std::optional<std::int32_t> type;
  std::string screen;
  std::optional<Rect> rect;
  std::optional<CellPair> position;
  std::string array;
  std::string raw;
  std::int32_t cellBytes = 0;
  BlockText text;
  std::string manifest;  // instead of one block
  std::string folder;
  bool patch = false;
  bool replace = false;
  bool beside = false;
  bool update = false;
  bool force = false;
  bool newScreen = false;
  std::string backup;
};

constexpr char kHelp[] =
    R"(Everything is decided before anything is written; if there are conflicts, they are listed and nothing is stored.
A block of the very same rectangle (and screen) and type is replaced, and told; with another number of bytes per
cell, or if the stored type of numbers, scale or unit would be lost, with --force only. A block that would lie
upon others of its type is refused in databases of type 0, where coef get answers from the oldest, unless
--patch, --replace or --beside says what is meant. Databases of type 1 keep one area of a type on a screen: one of
another rectangle is replaced with --force only.

  one cabinet of a stored screen:  tovrdb coef put wall.db --patch --type 1 --at 640,360 cabinet.npy

Many blocks at once, all of them or none, in one transaction:
  --manifest FILE  a JSON list of {"file": "a.npy", "type": 1, "rect": [L, T, R, B]} and, where wanted,
                   "screen", "area", "version", "scale" ("1/16384") and "unit"; files lie in the
                   manifest's folder or below it
  --folder DIR     its .npy files, named T<type>_<L>,<T>,<R>,<B>.npy, with <screen>_ in front in databases of
                   type 1: left_T1_0,0,1919,1079.npy; other files are left alone)";

constexpr std::size_t kMostNotices = 20;

StoreRules rulesOf(const Options& options) {
  const StoreMode mode = options.patch     ? StoreMode::kPatch
                         : options.replace ? StoreMode::kReplace
                         : options.beside  ? StoreMode::kBeside
                         : options.update  ? StoreMode::kUpdate
                                           : StoreMode::kCareful;
  return {mode, options.force, options.newScreen};
}

// Requires the options that describe a single block.
void requireBlock(const Options& options) {
  if (!options.type) throw Error(kInvalid, "--type is required");
  if (options.array.empty() == options.raw.empty()) throw Error(kInvalid, "BLOCK or --raw is required");
  if (!options.rect && !options.position) throw Error(kInvalid, "--rect or --at is required");
}

// Sets `dtype` if the file tells the type of its numbers.
CellBlock readBlock(const Options& options, std::optional<NumberType>& dtype) {
  if (!options.raw.empty()) return blockFromBytes(readInput(options.raw), *options.rect, options.cellBytes);
  NpyArray array = parseNpy(readInput(options.array), options.array);
  dtype = array.dtype;
  return blockFromArray(std::move(array), options.rect, options.position);
}

std::uint64_t bytesOf(const std::vector<WantedBlock>& blocks) {
  std::uint64_t bytes = 0;
  for (const WantedBlock& block : blocks) {
    bytes += static_cast<std::uint64_t>(columnsOf(block.area.rect) * rowsOf(block.area.rect) * block.cellBytes);
  }
  return bytes;
}

void tell(const std::vector<std::string>& notices) {
  const std::size_t told = std::min(notices.size(), kMostNotices);
  for (std::size_t i = 0; i < told; ++i) message(notices[i]);
  if (told < notices.size()) message("and so on: {} more", notices.size() - told);
}

// Makes the backup only if the blocks can be stored, and before they are.
Session openForStoring(const Context& context, const Options& options, const std::vector<WantedBlock>& wanted) {
  if (options.backup.empty()) return openDatabase(context, options.file);
  requireDatabaseFile(options.file);
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  {
    Session session = openDatabase(context, options.file, key);
    planBlocks(session, wanted, rulesOf(options), {});
    session.close();
  }
  backUp(context.options.access, options.file, key, options.backup, Existing::kRefuse);
  message("copied {} to {} first", options.file, options.backup);
  return openDatabase(context, options.file, key);
}

void putOne(Context& context, const Options& options) {
  requireBlock(options);
  BlockText text = options.text;
  const CellBlock block = readBlock(options, text.dtype);
  const WantedBlock wanted{"", {*options.type, options.screen, block.rect}, text, block.cellBytes};
  Session session = openForStoring(context, options, {wanted});
  const Applied applied =
      storeBlocks(session, {wanted}, rulesOf(options), [&](std::size_t) { return CellBlock(block); });
  session.close();
  tell(applied.notices);
  if (options.patch) return;
  message("stored {}, {} bytes per cell, under block key {}", toText(block.rect), block.cellBytes, applied.keys.back());
}

void putMany(Context& context, const Options& options) {
  auto files = options.manifest.empty() ? blocksOfFolder(options.folder)
                                        : blocksOfManifest(options.manifest, readInput(options.manifest));
  for (BlockFile& file : files) {
    if (!file.text.form.isGiven()) file.text.form = options.text.form;
  }
  if (files.empty()) throw Error(kFileProblem, "there are no blocks to store");
  const std::vector<WantedBlock> wanted = wantedOf(files);
  Session session = openForStoring(context, options, wanted);
  Applied applied;
  {
    Progress progress("coef put", bytesOf(wanted));
    applied = storeBlocks(session, wanted, rulesOf(options), [&](std::size_t index) {
      CellBlock block = readBlock(files[index]);
      progress.advance(block.size());
      return block;
    });
  }
  session.close();
  tell(applied.notices);
  message("stored {}", counted(files.size(), "block"));
}

void put(Context& context, const Options& options) {
  const bool many = !options.manifest.empty() || !options.folder.empty();
  return many ? putMany(context, options) : putOne(context, options);
}

void addPlace(CLI::App& command, Options& options) {
  addScreenName(command, options.screen);
  addCoefType(command, options.type);
  CLI::Option* rect = addRect(command, options.rect, "The cells, both edges inclusive");
  addPosition(command, "--at", options.position, "Instead, where the array's first cell lies")->excludes(rect);
}

void addCells(CLI::App& command, Options& options) {
  CLI::Option* array =
      command.add_option("BLOCK", options.array, "A .npy array, rows x columns (x values); - is standard input");
  CLI::Option* raw = command.add_option("--raw", options.raw, "Instead, a file of bare cells, row after row");
  CLI::Option* cellBytes =
      command.add_option("--cell-bytes", options.cellBytes, "Bytes per cell of a --raw file")->check(atLeast(1));
  raw->needs(cellBytes)->needs("--rect")->excludes(array);
  cellBytes->needs(raw);
}

// Options for many blocks: the manifest or the file names describe each of them.
void addMany(CLI::App& command, Options& options) {
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
}

void addRules(CLI::App& command, Options& options) {
  CLI::Option* patch = command.add_flag(
      "--patch", options.patch, "Put the cells into the stored block that holds their place; the rest of it stays");
  CLI::Option* replace =
      command.add_flag("--replace", options.replace, "Remove stored areas of the type that lie wholly inside")
          ->excludes(patch);
  CLI::Option* beside = command
                            .add_flag("--beside", options.beside,
                                      "Store upon other areas: where both hold a rectangle, the older answers")
                            ->excludes(patch)
                            ->excludes(replace);
  command.add_flag("--force", options.force,
                   "Replace a block of another number of bytes per cell, of other numbers (type, scale, unit) or, in "
                   "databases of type 1, of another rectangle");
  command.add_flag("--new-screen", options.newScreen,
                   "In databases of type 1: add the screen even if its name differs from another's only in case or "
                   "blanks, or begins or ends with a blank");
  command
      .add_flag("--update", options.update,
                "Rewrite what is stored and add nothing. The rectangle is the whole screen's (type 0), or becomes the "
                "screen's (type 1)")
      ->excludes(patch)
      ->excludes(replace)
      ->excludes(beside)
      ->excludes("--manifest")
      ->excludes("--folder");
  command.add_option("--backup", options.backup, "Copy the database file to this new file first")->type_name("COPY");
  patch->excludes("--area")->excludes("--version-text");
}

}  // namespace

void addCoefPutCommand(CommandGroup& coef) {
  const auto [command, options] =
      coef.add("put", "Store a block of cells, or many; nothing stored is lost silently", &Options::file, put);
  addFile(command, options.file);
  addPlace(command, options);
  addCells(command, options);
  command.add_option("--area", options.text.number,
                     "An area number. Blocks with a number are added, never put in the place of the same rectangle");
  command.add_option("--version-text", options.text.version, "Text kept with the block");
  addMany(command, options);
  addForm(command, options.text.form, "Kept with the block: the type of the numbers in a cell [an array's own]");
  addRules(command, options);
  command.footer(kHelp);
}

}  // namespace tovrdb::tool
