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

// As of the program that compares texts, which scripts know. Failures keep their codes, which are above.
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

std::string cellsText(const Difference& difference) {
  const BlockDifference& cells = difference.cells;
  const std::string text = fmt::format("{} of {} cells differ, ", cells.differing, cells.cells);
  if (!difference.form) return fmt::format("{}the first at {},{}", text, cells.at.x, cells.at.y);
  return fmt::format("{}most at {},{}, component {}: {} -> {}", text, cells.at.x, cells.at.y, cells.component,
                     difference.form->text(cells.before), difference.form->text(cells.after));
}

std::string bytesText(const BytesDifference& bytes) {
  std::string text = fmt::format("{} bytes", bytes.sizeBefore);
  if (bytes.sizeAfter != bytes.sizeBefore) text += fmt::format(" -> {} bytes", bytes.sizeAfter);
  if (bytes.differing != 0) text += fmt::format(", {} differ, the first at {}", bytes.differing, bytes.first);
  return text;
}

std::string faultText(const Difference& difference, const Options& options) {
  std::string text;
  for (const auto& [file, fault] :
       {std::pair(options.before, difference.before), std::pair(options.after, difference.after)}) {
    if (!fault.empty()) text += fmt::format("{}in {}: {}", text.empty() ? "" : "; ", file, fault);
  }
  return text;
}

std::string lineOf(const Difference& difference, const Options& options) {
  const auto only = [&](const std::string& file, const std::string& summary) {
    return fmt::format("only in {}: {}{}", file, difference.item, summary.empty() ? "" : " (" + summary + ")");
  };
  switch (difference.kind) {
    case Difference::Kind::kOnlyBefore:
      return only(options.before, difference.before);
    case Difference::Kind::kOnlyAfter:
      return only(options.after, difference.after);
    case Difference::Kind::kField:
      return fmt::format("{}: {}: '{}' -> '{}'", difference.item, difference.field, difference.before,
                         difference.after);
    case Difference::Kind::kCells:
      return difference.item + ": " + cellsText(difference);
    case Difference::Kind::kFault:
      return fmt::format("{}: cannot be compared: {}", difference.item, faultText(difference, options));
    case Difference::Kind::kBytes:
      break;
  }
  return difference.item + ": " + bytesText(difference.bytes);
}

Json jsonOf(const ItemPlace& place) {
  Json json{{"kind", place.kind}};
  if (!place.screen.empty()) json["screen"] = place.screen;
  if (!place.type.empty()) json["type"] = numberOrText(place.type);
  if (place.rect) json["rect"] = rectJson(*place.rect);
  if (place.id) json["id"] = *place.id;
  return json;
}

Json jsonOf(const Difference& difference) {
  Json json{{"item", difference.item}};
  json.update(jsonOf(difference.place));
  switch (difference.kind) {
    case Difference::Kind::kOnlyBefore:
      json["only_in"] = "a";
      break;
    case Difference::Kind::kOnlyAfter:
      json["only_in"] = "b";
      break;
    case Difference::Kind::kField:
      json.update({{"field", difference.field}, {"a", difference.before}, {"b", difference.after}});
      break;
    case Difference::Kind::kCells: {
      const BlockDifference& cells = difference.cells;
      json.update({{"cells", cells.cells}, {"differing", cells.differing}, {"at", {cells.at.x, cells.at.y}}});
      if (difference.form) {
        json.update(
            {{"component", cells.component}, {"a", cells.before}, {"b", cells.after}, {"largest", cells.largest}});
      }
      break;
    }
    case Difference::Kind::kFault:
      if (!difference.before.empty()) json["fault_a"] = difference.before;
      if (!difference.after.empty()) json["fault_b"] = difference.after;
      break;
    case Difference::Kind::kBytes:
      json.update({{"bytes_a", difference.bytes.sizeBefore},
                   {"bytes_b", difference.bytes.sizeAfter},
                   {"differing", difference.bytes.differing}});
      break;
  }
  return json;
}

std::string report(const std::vector<Difference>& differences, const Options& options) {
  if (!options.json) {
    std::string text;
    for (const Difference& difference : differences) text += printable(lineOf(difference, options)) + "\n";
    return text;
  }
  Json json{{"a", options.before}, {"b", options.after}, {"same", differences.empty()}, {"differences", Json::array()}};
  for (const Difference& difference : differences) json["differences"].push_back(jsonOf(difference));
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
  const bool damaged = std::any_of(differences.begin(), differences.end(),
                                   [](const Difference& each) { return each.kind == Difference::Kind::kFault; });
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
