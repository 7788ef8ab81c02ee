#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <new>
#include <set>

#include "tool/cells/CellNumbers.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/FileDifference.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/JsonText.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/pictures/GatheredNumbers.h"
#include "tool/pictures/HeatmapPicture.h"
#include "tool/pictures/HeatmapWords.h"
#include "tool/system/Paths.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

// As of the program that compares texts, which scripts know.
constexpr int kDifferent = 1;
constexpr ExitCode kTrouble = kUsage;  // 2

constexpr double kPicturedPercent = 99;  // of the differences other than zero

struct Options {
  std::string before;
  std::string after;
  std::string keyFileAfter;
  std::optional<double> absolute;
  std::optional<double> relative;
  std::optional<Dtype> dtype;
  OutputOptions picture;
  std::optional<std::int32_t> type;
  std::string screen;
  std::size_t component = 0;
  std::string unit;
  bool json = false;
};

// The picture of the differences of one number of every cell.
class DifferencePicture {
 public:
  DifferencePicture(Context& context, const Options& options, const FileComparison& files)
      : options_(options),
        output_(context.output, options.picture, options.before),
        type_(typeOf(options, files)),
        numbers_(regionOf(files), Merge::kFarthestFromZero) {}

  void add(const StoredArea& area, const CellBlock& before, const CellBlock& after) {
    if (!drawn(area)) return;
    requireComponent(area.cellBytes, *options_.dtype, options_.component);
    std::vector<double> minuend(static_cast<std::size_t>(columnsOf(area.rect)));
    numbers_.add(area.rect, [&](std::int32_t y, double* row) {
      std::fill(row, row + minuend.size(), 0.0);
      if (before.bytes == nullptr) return;
      readRow(before, *options_.dtype, options_.component, area.rect, y, row);
      readRow(after, *options_.dtype, options_.component, area.rect, y, minuend.data());
      std::transform(minuend.begin(), minuend.end(), row, row, std::minus<>());
    });
  }

  void write() {
    Heatmap heatmap;
    heatmap.palette = Palette::kDiverging;
    heatmap.title = fmt::format("{} - {}: type {}, component {}", nameOf(options_.after), nameOf(options_.before),
                                type_, options_.component);
    heatmap.label = options_.unit.empty() ? "difference" : options_.unit;
    heatmap.outlines = outlines_;
    setColours(numbers_, numbers_.balancedRange(kPicturedPercent), heatmap);
    heatmap.notes = {
        fmt::format("Colours span the percentile {} of differences other than 0.", numberText(kPicturedPercent)),
        scaleNote(numbers_.raster().scale(), Merge::kFarthestFromZero)};
    const auto png = drawHeatmap(numbers_.raster(), heatmap);
    output_.write(png);
    output_.commit();
  }

 private:
  static std::string nameOf(const std::string& path) { return textOf(pathOf(path).filename()); }

  static std::int32_t typeOf(const Options& options, const FileComparison& files) {
    if (options.type) return *options.type;
    std::set<std::int32_t> types;
    for (const StoredArea& area : files.commonAreas()) types.insert(area.type);
    if (types.size() == 1) return *types.begin();
    if (types.empty()) throw ToolError(kUsage, "the files have no block in common that could be drawn");
    throw ToolError(kUsage, "say which blocks to draw with --type: both files have types {}", fmt::join(types, ", "));
  }

  bool drawn(const StoredArea& area) const {
    return area.type == type_ && (options_.screen.empty() || area.screen == options_.screen);
  }

  Rect regionOf(const FileComparison& files) {
    std::optional<Rect> region;
    std::set<std::string> named;  // each screen once
    for (const StoredArea& area : files.commonAreas()) {
      if (!drawn(area)) continue;
      region = region ? united(*region, area.rect) : area.rect;
      outlines_.push_back({area.rect, named.insert(area.screen).second ? area.screen : "", true});
    }
    if (region) return *region;
    throw ToolError(kUsage, "the files have no block of type {} in common to draw", type_);
  }

  const Options& options_;
  ByteOutput output_;
  std::int32_t type_;
  std::vector<Outline> outlines_;
  GatheredNumbers numbers_;
};

std::string cellsText(const Difference& difference) {
  const BlockDifference& cells = difference.cells;
  const std::string text = fmt::format("{} of {} cells differ, ", cells.differing, cells.cells);
  if (!difference.numbers) return fmt::format("{}the first at {},{}", text, cells.at.x, cells.at.y);
  return fmt::format("{}most at {},{}, component {}: {} -> {}", text, cells.at.x, cells.at.y, cells.component,
                     numberText(cells.before), numberText(cells.after));
}

std::string bytesText(const BytesDifference& bytes) {
  std::string text = fmt::format("{} bytes", bytes.sizeBefore);
  if (bytes.sizeAfter != bytes.sizeBefore) text += fmt::format(" -> {} bytes", bytes.sizeAfter);
  if (bytes.differing != 0) text += fmt::format(", {} differ, the first at {}", bytes.differing, bytes.first);
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
    case Difference::Kind::kBytes:
      break;
  }
  return difference.item + ": " + bytesText(difference.bytes);
}

Json jsonOf(const Difference& difference) {
  Json json{{"item", difference.item}};
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
      if (difference.numbers) {
        json.update(
            {{"component", cells.component}, {"a", cells.before}, {"b", cells.after}, {"largest", cells.largest}});
      }
      break;
    }
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
    throw ToolError(kTrouble, "the picture would replace {}", options.after);
  }
}

void diff(Context& context, const Options& options) {
  refuseReplacing(options);
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  const std::string keyAfter = options.keyFileAfter.empty() ? key : readKey(options.keyFileAfter, KeyUse::kOpen);
  for (const std::string& file : {options.before, options.after}) requireOtherThanLog(context, file);
  FileComparison files(context.options.access, {options.before, key}, {options.after, keyAfter});
  std::optional<DifferencePicture> picture;
  if (!options.picture.path.empty()) picture.emplace(context, options, files);

  Comparing how{options.dtype, std::nullopt};
  if (options.absolute || options.relative)
    how.tolerance = Tolerance{options.absolute.value_or(0), options.relative.value_or(0)};
  const auto differences =
      files.compare(how, [&](const StoredArea& area, const CellBlock& before, const CellBlock& after) {
        if (picture) picture->add(area, before, after);
      });
  if (picture) picture->write();
  context.output.print(report(differences, options));
  context.output.finish();
  context.code = differences.empty() ? kDone : kDifferent;
}

// Every failure is trouble, so that 1 means "different" and nothing else.
void diffOrTrouble(Context& context, const Options& options) {
  try {
    diff(context, options);
  } catch (const std::bad_alloc&) {
    throw ToolError(kTrouble, "out of memory");
  } catch (const std::exception& error) {
    throw ToolError(kTrouble, error.what());
  }
}

std::string bothFiles(const Options& options) { return options.before + " " + options.after; }

void addPictureOptions(CLI::App& command, Options& options) {
  CLI::Option* picture =
      command.add_option("--heatmap", options.picture.path, "Draw the differences of one number of every cell (PNG)")
          ->type_name("FILE");
  command.add_flag("--force", options.picture.force, "Replace the picture if it exists")->needs(picture);
  command.add_option("--type", options.type, "Of the blocks to draw, when there are several")->needs(picture);
  command.add_option("--screen", options.screen, "Draw only this screen")->needs(picture);
  command.add_option("--component", options.component, "Which number of each cell to draw, from 0")
      ->capture_default_str()
      ->needs(picture);
  command.add_option("--unit", options.unit, "Text beside the picture's colour bar")->type_name("TEXT")->needs(picture);
}

}  // namespace

void addDiffCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("diff", "What differs between two database files", bothFiles, diffOrTrouble);
  command.footer(
      "Exit codes of this command: 0 the same, 1 different, 2 trouble of any kind.\n\n"
      "Compared are metadata, screens, blocks (found by screen, type and rectangle), generic data and measurements;\n"
      "not the times and the keys of rows. Without a tolerance cells differ when a bit does.\n"
      "The picture shows B - A in cool to warm colours, zero in the middle. Regions of more than 1280 x 800 cells are\n"
      "made smaller: a pixel then shows the largest difference of its cells.");
  command.add_option("A", options.before, "The first database file")->required();
  command.add_option("B", options.after, "The second database file")->required();
  command.add_option("--key-file-b", options.keyFileAfter, "The key of B is this file's first line [as for A]")
      ->type_name("FILE");
  CLI::Option* dtype = addDtype(command, options.dtype, "Type of the numbers in a cell (uint16, float32, ...)");
  CLI::Option* absolute = command.add_option("--atol", options.absolute, "Numbers this far apart count as equal");
  absolute->check(CLI::NonNegativeNumber)->needs(dtype);
  command.add_option("--rtol", options.relative, "The same, as a share of the larger of the two")
      ->check(CLI::NonNegativeNumber)
      ->needs(dtype)
      ->excludes(absolute);
  addPictureOptions(command, options);
  command.get_option("--heatmap")->needs(dtype);
  command.add_flag("--json", options.json, "Write JSON");
}

}  // namespace tovrtool
