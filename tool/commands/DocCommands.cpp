#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/commands/CommandTree.h"
#include "tool/commands/Commands.h"
#include "tool/commands/Completion.h"
#include "tool/commands/ManualPage.h"

namespace tovrdb::tool {
namespace {

struct Options {
  const CLI::App* program = nullptr;
  std::string shell;
};

constexpr char kJsonManual[] =
    "With --json these commands print one JSON value. Members may be added in later versions, and are never renamed.\n"
    "Rectangles are [left, top, right, bottom], cells are [x, y]; what is no finite number is null.\n\n"
    "inspect        {name, version, api_version, description, classes}; a class has {class, object, created,\n"
    "               message_handler}\n"
    "coef list      a list of {id, screen, type, area_number, rect, block_id, bytes_per_cell, stored_bytes,\n"
    "               version, dtype, scale, unit}; the last three where the form of the numbers is kept\n"
    "screen list    a list of {id, name, rect, columns, rows}\n"
    "data list      a list of {type, id, blob_id, stored_bytes, version, screen}\n"
    "measure list   a list of {id, stored_bytes, version}, with type and rect if they are stored\n"
    "info           {file, database_type, description, engine, tables, screens}\n"
    "check          {file, ok, checks}\n"
    "coef stats     {file, screen, type, areas, rect, dtype, scale, unit, outlier_limit, components}; a component has\n"
    "               {component, count, not_finite, minimum, maximum, mean, standard_deviation, percentiles,\n"
    "               histogram: {below, bins: [[low, high, cells]], above},\n"
    "               outliers: {median, spread, count, strongest: [{cell, value, spreads}]}}\n"
    "  --cabinet, --by-area: a component has {component, ends, cabinets, seams, worst} instead;\n"
    "               cabinets: [{rect, count, not_finite, minimum, maximum, mean, standard_deviation, median, at_ends,\n"
    "               stand_out}]; seams: [{between: [first, second], line, difference}], the first two by their\n"
    "               places in cabinets; worst: [{cabinet, cell, value, spreads}]\n"
    "diff           {a, b, same, differences}; a difference has {item, kind} and, as far as its kind has them,\n"
    "               {screen, type, rect, id}, and one of\n"
    "               {only_in: \"a\" or \"b\"}, {field, a, b}, {cells, differing, at, component, a, b, largest} and\n"
    "               {bytes_a, bytes_b, differing}\n";

void manual(Context& context, const Options& options) {
  context.output.print(manualPage(commandPages(*options.program), kJsonManual));
}

void completion(Context& context, const Options& options) {
  const auto pages = commandPages(*options.program);
  const auto script = options.shell == "bash"  ? bashCompletion
                      : options.shell == "zsh" ? zshCompletion
                                               : fishCompletion;
  context.output.print(script(pages));
}

}  // namespace

void addDocCommands(CommandGroup& program) {
  program.add("manual", "The manual page, for man: tovrdb manual | man -l -", manual).options.program = &program.app();

  const auto [command, options] = program.add("completion", "A shell's completion script", completion);
  options.program = &program.app();
  command.add_option("SHELL", options.shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

}  // namespace tovrdb::tool
