#include "client/base/Error.h"
#include "client/reading/CellStatistics.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/statistics/StatisticsText.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  StatisticsQuestion question;
  std::optional<CabinetTable> csv;
  bool json = false;
};

std::string reportOf(const CellStatistics& statistics, const Options& options) {
  if (options.csv) return cabinetCsv(statistics.cabinets, statistics.form, *options.csv);
  const double limit = options.question.outlierLimit;
  return options.json ? statisticsJson(statistics, limit, options.file) : statisticsText(statistics, limit);
}

void stats(Context& context, const Options& options) {
  if (options.csv && !options.question.isByPart()) throw Error(kInvalid, "--csv goes with --cabinet or --by-area");
  Session session = openDatabase(context, options.file);
  CellAnswer cells = findCells(session, options.question);
  session.close();
  noteAnswer(cells, options.question.cells.form);
  context.output.print(reportOf(statisticsOf(std::move(cells), options.question), options));
}

CabinetTable parseTable(const std::string& name) {
  if (name == "cabinets") return CabinetTable::kCabinets;
  if (name == "seams") return CabinetTable::kSeams;
  if (name == "worst") return CabinetTable::kWorst;
  throw std::invalid_argument("'" + name + "' is not one of cabinets, seams, worst");
}

void addCabinetOptions(CLI::App& command, Options& options) {
  CLI::Option* cabinet = addParsed(command, "--cabinet", options.question.cabinet, parseSize,
                                   "Figures of every cabinet of this size; the first begins at the screen's corner");
  cabinet->type_name("COLUMNSxROWS");
  command.add_flag("--by-area", options.question.byArea, "The same of every stored area")->excludes(cabinet);
  command
      .add_option("--worst", options.question.worst, "How many of the worst cells to list, with --cabinet or --by-area")
      ->capture_default_str();
  addParsed(command, "--csv", options.csv, parseTable,
            "Write one table as CSV, with --cabinet or --by-area: cabinets, seams or worst")
      ->type_name("TABLE")
      ->excludes("--json");
}

}  // namespace

void addCoefStatsCommand(CommandGroup& coef) {
  const auto [command, options] = coef.add("stats", "The numbers of stored cells", &Options::file, stats);
  command.footer(
      R"(Percentiles are linear between the two nearest values; the deviation is divided by the number of cells. The
histogram goes from the 1st to the 99th percentile; what lies beyond is counted in a first and a last line.
A spread is 1.4826 x the median absolute deviation from the median (where more than half the cells are equal,
1.2533 x the mean one): a standard deviation that a few wild cells do not move.

With --cabinet or --by-area: the figures of every part; the seams, each the difference of the means of the two
lines of cells that adjoin; how many cells have the numbers at the ends of their type, such as 0 and 65535; and
the cells farthest from the median of their part.)");
  addFile(command, options.file);
  addCells(command, options.question.cells);
  command.add_option("--component", options.question.component, "Only this number of each cell, from 0 [all]");
  command.add_option("--outliers", options.question.outlierLimit, "Spreads from the median from which cells stand out")
      ->capture_default_str()
      ->check(atLeast(0));
  addJsonFlag(command, options.json);
  addCabinetOptions(command, options);
}

}  // namespace tovrdb::tool
