#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/Documentation.h"

namespace tovrdb::tool {
namespace {

struct Options {
  const CLI::App* program = nullptr;
  std::string shell;
};

constexpr char kJsonManual[] =
    R"(With --json these commands print one JSON value. Members may be added in later versions, and are never renamed.
Rectangles are [left, top, right, bottom], cells are [x, y]; what is no finite number is null.

inspect        {name, version, api_version, description, classes}; a class has {class, object, created,
               message_handler}
coef list      a list of {id, screen, type, area_number, rect, block_id, bytes_per_cell, stored_bytes,
               version, dtype, scale, unit}; the last three where the form of the numbers is kept
screen list    a list of {id, name, rect, columns, rows}
data list      a list of {type, id, blob_id, stored_bytes, version, screen}
measure list   a list of {id, stored_bytes, version}, with type and rect if they are stored
info           {file, database_type, description, engine, tables, screens}
check          {file, ok, checks}
coef stats     {file, screen, type, areas, rect, dtype, scale, unit, outlier_limit, components}; a component has
               {component, count, not_finite, minimum, maximum, mean, standard_deviation, percentiles,
               histogram: {below, bins: [[low, high, cells]], above},
               outliers: {median, spread, count, strongest: [{cell, value, spreads}]}}
  --cabinet, --by-area: a component has {component, ends, cabinets, seams, worst} instead;
               cabinets: [{rect, count, not_finite, minimum, maximum, mean, standard_deviation, median, at_ends,
               stand_out}]; seams: [{between: [first, second], line, difference}], the first two by their
               places in cabinets; worst: [{cabinet, cell, value, spreads}]
diff           {a, b, same, differences}; a difference has {item, kind} and, as far as its kind has them,
               {screen, type, rect, id}, and one of
               {only_in: "a" or "b"}, {field, a, b}, {cells, differing, at, component, a, b, largest} and
               {bytes_a, bytes_b, differing}
)";

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
