#include "client/cells/CellBlock.h"
#include "client/cells/CellNumbers.h"
#include "client/reading/CellQuery.h"
#include "client/reading/NumberForms.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  CellQuery cells;
  OutputOptions output;
  bool raw = false;
  bool csv = false;
};

void write(const CellAnswer& answer, const Options& options, ByteOutput& output) {
  const CellBlock& block = answer.cells;
  if (options.raw) return output.write(block.bytes.get(), block.size());
  const NumberForm form = requireForm(answer.areas, options.cells.form);
  if (options.csv) return writeCsv(block, form, [&output](const std::string& text) { output.write(text); });
  output.write(npyHeader(form.dtype, blockShape(block.rect, block.cellBytes, form.dtype)));
  output.write(block.bytes.get(), block.size());
}

void get(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  const CellAnswer answer = findCells(session, options.cells);
  session.close();
  write(answer, options, output);
  output.commit();
  noteAnswer(answer, options.cells.form);
  if (options.raw) message("{}, {} bytes per cell", toText(answer.cells.rect), answer.cells.cellBytes);
}

}  // namespace

void addCoefGetCommand(CommandGroup& coef) {
  const auto [command, options] =
      coef.add("get", "Read a rectangle of cells out of stored blocks", &Options::file, get);
  command.footer(
      R"(Examples:
  tovrdb coef get wall.db --type 1 --rect 100,100,163,131 -o part.npy
  tovrdb coef get wall.db --type 1 --rect 0,0,3839,1079 --mosaic -o both.npy
  tovrdb coef get wall.db --area 7 --csv -o cabinet.csv

A .npy array holds the numbers as they are stored. CSV holds them scaled, as the form says that is kept with
the block (coef put --scale); --scale 1 gives the stored ones.)");
  addFile(command, options.file);
  addCells(command, options.cells);
  addOutput(command, options.output);
  CLI::Option* raw = command.add_flag("--raw", options.raw, "Write the bare cells without a header");
  raw->excludes("--dtype")->excludes("--scale")->excludes("--unit")->excludes("--fill");
  command.add_flag("--csv", options.csv, "Write text: a line per cell, its column, row and values")->excludes(raw);
}

}  // namespace tovrdb::tool
