#include <fstream>

#include "client/base/Error.h"
#include "client/disk/Platform.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/Message.h"
#include "tool/pictures/HeatmapBuild.h"

namespace tovrdb::tool {
namespace {

struct Options {
  HeatmapQuestion question;
  OutputOptions output;
};

bool isArray(const std::string& path) {
  char start[6] = {};
  std::ifstream(pathOf(path), std::ios::binary).read(start, sizeof start);
  return std::string(start, sizeof start) == "\x93NUMPY";
}

HeatmapAnswer answer(Context& context, const HeatmapQuestion& question) {
  if (!isArray(question.file)) {
    if (!question.type) throw Error(kInvalid, "--type is required for a database");
    Session session = openDatabase(context, question.file);
    return heatmapOfDatabase(session, question);
  }
  if (question.type || question.wall || question.form.dtype || !question.screen.empty()) {
    throw Error(kInvalid,
                "it is an array, which tells its own type and has no screens: leave out --type, --dtype, "
                "--screen and --wall");
  }
  return heatmapOfArray(question);
}

void heatmap(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.question.file);
  const HeatmapAnswer picture = answer(context, options.question);
  for (const std::string& note : picture.notes) message("note: {}", note);
  output.write(picture.png);
  output.commit();
}

}  // namespace

void addHeatmapCommand(CommandGroup& program) {
  const auto [command, options] = program.add(
      "heatmap", "Draw the numbers of cells as a PNG picture",
      [](const Options& chosen) { return chosen.question.file; }, heatmap);
  command.footer(
      R"(Examples:
  tovrdb heatmap wall.db -o wall.png --type 1 --wall --scale 1/16384 --unit 'gain of red'
  tovrdb heatmap block.npy -o block.png --component 4 --range 0,16384

Without --rect, --screen and --wall the only area of the type is drawn, of several the whole wall.
Screens of a type-1 database that lie on one another are drawn side by side.
Colours are viridis. Cells beyond the range get the end's colour, and the bar's pointed end tells how far they
go; hatched grey means no cells. Regions of more than 1280 x 800 cells are made smaller: a pixel then shows the
mean of its cells.)");
  command.add_option("FILE", options.question.file, "The database file, or a .npy array")->required();
  addOutput(command, options.output);
  command.add_option("--type", options.question.type, "The coefficient type, in databases");
  addForm(command, options.question.form,
          "Type of the numbers in a cell, in databases (uint16, float32, ...) [as kept with the block]");
  CLI::Option* component =
      command.add_option("--component", options.question.component, "Which number of each cell, from 0")
          ->capture_default_str();
  command
      .add_flag("--sheet", options.question.sheet,
                "All numbers of a cell, each with colours of its own unless --range is given")
      ->excludes(component);
  CLI::Option* rect = addRect(command, options.question.rect, "Only these cells, both edges inclusive");
  CLI::Option* screen = command.add_option("--screen", options.question.screen, "Only this screen");
  command.add_flag("--wall", options.question.wall, "All screens in their places")->excludes(rect)->excludes(screen);
  CLI::Option* range =
      addNumberRange(command, "--range", options.question.range, "The numbers of the first and last colour");
  addPercentRange(command, "--percentile", options.question.percentiles,
                  "Instead, the percents of cells below them [1,99]")
      ->excludes(range);
  command.add_option("--title", options.question.title, "Text above the picture [the file and what is drawn]")
      ->type_name("TEXT");
}

}  // namespace tovrdb::tool
