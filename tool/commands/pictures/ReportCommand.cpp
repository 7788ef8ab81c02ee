#include <algorithm>
#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/Platform.h"
#include "client/session/FileDiagnosis.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/report/ReportContent.h"
#include "tool/report/ReportPage.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  std::string against;
  std::string keyFileAgainst;
  OutputOptions output;
  FormOptions form;
  std::optional<CellPair> cabinet;
};

void noteFaults(const ReportContent& content) {
  const auto hidden = std::count_if(content.areas.begin(), content.areas.end(),
                                    [](const ReportArea& area) { return !area.fault.empty(); });
  const Soundness soundness = soundnessOf(content.verdicts);
  if (soundness == Soundness::kFault) message("note: checks of the file failed; the page tells which");
  if (soundness == Soundness::kWarning) message("note: checks of the file warn; the page tells of what");
  if (!content.againstFault.empty()) message("note: {} cannot be compared; the page tells why", content.against);
  if (hidden > 0) message("note: {} of {} blocks are not shown; the page tells why", hidden, content.areas.size());
  if (content.block > 1)
    message("note: the pictures are reduced; each of their cells stands for {0} x {0}", content.block);
}

void refuseReplacing(const Options& options) {
  std::error_code error;
  if (!std::filesystem::equivalent(pathOf(options.output.path), pathOf(options.against), error)) return;
  throw Error(kInvalid, "the page would replace {}", options.against);
}

void report(Context& context, const Options& options) {
  for (const std::string& file : {options.file, options.against}) {
    if (!file.empty()) requireOtherThanLog(context, file);
  }
  requireDatabaseFile(options.file);
  ByteOutput output(context.output, options.output, options.file);
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  ReportQuestion question{{options.file, key}, {}, options.form, options.cabinet};
  if (!options.against.empty()) {
    requireDatabaseFile(options.against);
    refuseReplacing(options);
    question.against = {options.against,
                        options.keyFileAgainst.empty() ? key : readKey(options.keyFileAgainst, KeyUse::kOpen)};
  }
  const ReportContent content = buildReport(context.options.access, question);
  output.write(reportPage(content));
  output.commit();
  noteFaults(content);
}

}  // namespace

void addReportCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("report", "Make a page to look at: the verdict, the wall, its numbers", &Options::file, report);
  command.footer(
      R"(Example:
  tovrdb report wall.db --against older.db --cabinet 160x180 -o wall.html

The page is one file that any browser opens, prints, and needs no network for. It holds calibration data in the
clear, so only its owner may read the file unless --mode is given; keys are not in it. Blocks that cannot be read are
named in it. Walls too large for a page of 25 MB are shown by blocks of cells: minimum, mean and maximum.)");
  addFile(command, options.file);
  addOutput(command, options.output);
  CLI::Option* against =
      command.add_option("--against", options.against, "Also what changed since this older database file")
          ->type_name("FILE");
  command.add_option("--key-file-against", options.keyFileAgainst, "Its key is this file's first line [the same key]")
      ->type_name("FILE")
      ->needs(against);
  addParsed(
      command, "--cabinet", options.cabinet, parseSize,
      "Figures and outlines of every cabinet of this size; the first begins at the screen's corner [of every area]")
      ->type_name("COLUMNSxROWS");
  addForm(command, options.form, "Type of the numbers in a cell (uint16, float32, ...) [as kept with the blocks]");
}

}  // namespace tovrdb::tool
