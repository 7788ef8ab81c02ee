#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <new>

#include "client/base/Error.h"
#include "client/checks/FileDifference.h"
#include "client/checks/JsonForms.h"
#include "client/disk/Platform.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/pictures/DifferencePicture.h"

namespace tovrdb::tool {
namespace {

// The exit code of diff(1), which scripts know. Failures have higher codes.
constexpr int kDifferent = 1;
constexpr ErrorKind kTrouble = kInvalid;  // 2; instead of kRefused, which is 1

struct Options {
  std::string before;
  std::string after;
  std::string keyFileAfter;
  std::optional<double> absolute;
  std::optional<double> relative;
  FormOptions form;
  OutputOptions picture;
  DifferenceSubject drawn;
  bool json = false;

  std::optional<Tolerance> tolerance() const {
    if (!absolute && !relative) return std::nullopt;
    return Tolerance{absolute.value_or(0), relative.value_or(0)};
  }
};

// Words a difference as one line.
class DifferenceLine {
 public:
  DifferenceLine(const std::string& item, const Options& options) : item_(item), options_(options) {}

  std::string operator()(const OnlyBefore& only) const { return onlyIn(options_.before, only.summary); }
  std::string operator()(const OnlyAfter& only) const { return onlyIn(options_.after, only.summary); }
  std::string operator()(const FieldDiffers& field) const {
    return fmt::format("{}: {}: '{}' -> '{}'", item_, field.field, field.before, field.after);
  }
  std::string operator()(const CellsDiffer& what) const {
    const BlockDifference& cells = what.cells;
    const std::string text = fmt::format("{}: {} of {} cells differ, ", item_, cells.differing, cells.cells);
    if (!what.form) return fmt::format("{}the first at {},{}", text, cells.at.x, cells.at.y);
    return fmt::format("{}most at {},{}, component {}: {} -> {}", text, cells.at.x, cells.at.y, cells.component,
                       what.form->text(cells.before), what.form->text(cells.after));
  }
  std::string operator()(const BytesDiffer& bytes) const {
    std::string text = fmt::format("{}: {} bytes", item_, bytes.sizeBefore);
    if (bytes.sizeAfter != bytes.sizeBefore) text += fmt::format(" -> {} bytes", bytes.sizeAfter);
    if (bytes.differing != 0) text += fmt::format(", {} differ, the first at {}", bytes.differing, bytes.first);
    return text;
  }
  std::string operator()(const Unreadable& faults) const {
    std::vector<std::string> texts;
    if (!faults.before.empty()) texts.push_back(fmt::format("in {}: {}", options_.before, faults.before));
    if (!faults.after.empty()) texts.push_back(fmt::format("in {}: {}", options_.after, faults.after));
    return fmt::format("{}: cannot be compared: {}", item_, fmt::join(texts, "; "));
  }

 private:
  std::string onlyIn(const std::string& file, const std::string& summary) const {
    return fmt::format("only in {}: {}{}", file, item_, summary.empty() ? "" : " (" + summary + ")");
  }

  const std::string& item_;
  const Options& options_;
};

std::string report(const std::vector<Difference>& differences, const Options& options) {
  if (!options.json) {
    std::string text;
    for (const Difference& each : differences) {
      text += printable(std::visit(DifferenceLine(each.item, options), each.what)) + "\n";
    }
    return text;
  }
  Json json{{"a", options.before}, {"b", options.after}, {"same", differences.empty()}, {"differences", Json::array()}};
  for (const Difference& difference : differences) json["differences"].push_back(differenceJson(difference));
  return jsonText(json);
}

void refuseReplacing(const Options& options) {
  std::error_code error;
  if (options.picture.path != "-" &&
      std::filesystem::equivalent(pathOf(options.picture.path), pathOf(options.after), error)) {
    throw Error(kTrouble, "the picture would replace {}", options.after);
  }
}

void diff(Context& context, const Options& options) {
  refuseReplacing(options);
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  const std::string keyAfter = options.keyFileAfter.empty() ? key : readKey(options.keyFileAfter, KeyUse::kOpen);
  for (const std::string& file : {options.before, options.after}) requireOtherThanLog(context, file);
  FileComparison files(context.options.access, {options.before, key}, {options.after, keyAfter});
  std::optional<DifferencePicture> picture;
  std::optional<ByteOutput> output;
  if (!options.picture.path.empty()) {
    output.emplace(context.output, options.picture, options.before);
    picture.emplace(options.drawn, Comparing{options.form, options.tolerance()}, files.commonAreas());
  }

  const VisitBlock visit = [&](const StoredArea& area, const CellBlock& before, const CellBlock& after,
                               const std::optional<NumberForm>& form) {
    if (picture) picture->add(area, before, after, form);
  };
  const auto differences = files.compare({options.form, options.tolerance()}, visit);
  if (picture) {
    output->write(picture->png(fmt::format("{} - {}", fileNameOf(options.after), fileNameOf(options.before))));
    output->commit();
  }
  context.output.print(report(differences, options));
  context.output.finish();
  const bool damaged = std::any_of(differences.begin(), differences.end(), [](const Difference& each) {
    return std::holds_alternative<Unreadable>(each.what);
  });
  if (damaged) throw Error(kDamaged, "a block is damaged and was not compared; all other differences are listed");
  context.code = differences.empty() ? 0 : kDifferent;
}

// Every failure is trouble, so that 1 means "different" and nothing else.
void diffOrTrouble(Context& context, const Options& options) {
  try {
    diff(context, options);
  } catch (const Error& error) {
    if (error.kind() == kRefused) throw Error(kTrouble, error.what());
    throw;
  } catch (const std::bad_alloc&) {
    throw Error(kTrouble, "out of memory");
  } catch (const std::exception& error) {
    throw Error(kTrouble, error.what());
  }
}

std::string bothFiles(const Options& options) { return options.before + " " + options.after; }

void addPictureOptions(CLI::App& command, Options& options) {
  CLI::Option* picture =
      command.add_option("--heatmap", options.picture.path, "Draw the differences of the numbers of cells (PNG)")
          ->type_name("FILE");
  command.add_flag("--force", options.picture.force, "Replace the picture if it exists")->needs(picture);
  addMode(command, options.picture.mode)->needs(picture);
  command.add_option("--type", options.drawn.type, "Of the blocks to draw, when there are several")->needs(picture);
  command.add_option("--screen", options.drawn.screen, "Draw only this screen")->needs(picture);
  CLI::Option* component =
      command.add_option("--component", options.drawn.component, "Which number of each cell to draw, from 0");
  component->capture_default_str()->needs(picture);
  command.add_flag("--sheet", options.drawn.sheet, "Draw all numbers of a cell")->excludes(component)->needs(picture);
}

}  // namespace

void addDiffCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("diff", "What differs between two database files", bothFiles, diffOrTrouble);
  command.footer(
      R"(Exit codes of this command: 0 the same, 1 different; 2 and above are failures, as of every command.

Compared are metadata, screens, blocks (found by screen, type and rectangle), generic data and measurements;
not the times and the keys of rows. Without a tolerance cells differ when a bit does.
Numbers, tolerances and the picture are scaled where the form that is kept with the blocks says so.
The picture shows B - A in cool to warm colours, zero in the middle; what a tolerance lets pass is drawn as 0.
Cells that differ are counted below it, and framed in black.
Regions of more than 1280 x 800 cells are made smaller: a pixel then shows the largest difference of its cells.)");
  command.add_option("A", options.before, "The first database file")->required();
  command.add_option("B", options.after, "The second database file")->required();
  command.add_option("--key-file-b", options.keyFileAfter, "The key of B is this file's first line [as for A]")
      ->type_name("FILE");
  addForm(command, options.form, "Type of the numbers in a cell (uint16, float32, ...) [as kept with the blocks]");
  CLI::Option* absolute = command.add_option("--atol", options.absolute, "Numbers this far apart count as equal");
  absolute->check(atLeast(0));
  command.add_option("--rtol", options.relative, "The same, as a share of the larger of the two")
      ->check(atLeast(0))
      ->excludes(absolute);
  addPictureOptions(command, options);
  addJsonFlag(command, options.json);
}

}  // namespace tovrdb::tool
