#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <new>
#include <set>

#include "tool/cells/CellNumbers.h"
#include "tool/cells/NumberText.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/CellArguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/JsonForms.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/FileDifference.h"
#include "tool/io/ByteOutput.h"
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
  FormOptions form;
  OutputOptions picture;
  std::optional<std::int32_t> type;
  std::string screen;
  std::size_t component = 0;
  bool json = false;

  std::optional<Tolerance> tolerance() const {
    if (!absolute && !relative) return std::nullopt;
    return Tolerance{absolute.value_or(0), relative.value_or(0)};
  }
};

// The picture of the differences of one number of every cell.
class DifferencePicture {
 public:
  DifferencePicture(Context& context, const Options& options, const FileComparison& files)
      : options_(options),
        output_(context.output, options.picture, options.before),
        type_(typeOf(options, files)),
        numbers_(regionOf(files), Merge::kFarthestFromZero) {}

  // What counts as equal is drawn as equal.
  void add(const StoredArea& area, const CellBlock& before, const CellBlock& after,
           const std::optional<NumberForm>& form) {
    if (!drawn(area)) return;
    if (form) describe(*form, area.cellBytes);
    if (before.bytes != nullptr && !form) {
      throw ToolError(kUsage, "nothing tells the numbers of {}, type {}: say it with --dtype", toText(area), area.type);
    }
    numbers_.add(area.rect, [&](const CellRun& run, double* row) {
      const std::size_t count = static_cast<std::size_t>(run.right - run.left) + 1;
      std::fill(row, row + count, 0.0);
      if (before.bytes == nullptr) return;
      std::vector<double> minuend(count);
      const Rect part{run.left, run.y, run.right, run.y};
      readRow(before, *form, options_.component, part, run.y, row);
      readRow(after, *form, options_.component, part, run.y, minuend.data());
      std::transform(minuend.begin(), minuend.end(), row, row,
                     [this](double late, double early) { return difference(early, late); });
    });
  }

  void write() {
    Heatmap heatmap;
    heatmap.palette = Palette::kDiverging;
    heatmap.title = fmt::format("{} - {}: type {}, component {}", nameOf(options_.after), nameOf(options_.before),
                                type_, options_.component);
    heatmap.label = form_.unit.empty() ? "difference" : form_.unit;
    heatmap.textOf = [form = form_](double number) { return form.text(number); };
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
  void describe(const NumberForm& form, std::int32_t cellBytes) {
    requireComponent(cellBytes, form.dtype, options_.component);
    form_ = form;
  }

  double difference(double before, double after) const {
    const auto tolerance = options_.tolerance();
    if (tolerance && !differ(before, after, *tolerance)) return 0;
    constexpr double kLargest = std::numeric_limits<double>::max();
    const double apart = after - before;
    return std::isfinite(before) && std::isfinite(after) ? std::clamp(apart, -kLargest, kLargest) : apart;
  }

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
  NumberForm form_{parseDtype("float64"), {}, {}};  // as long as no block tells another
  std::vector<Outline> outlines_;
  GatheredNumbers numbers_;
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

  const VisitBlock visit = [&](const StoredArea& area, const CellBlock& before, const CellBlock& after,
                               const std::optional<NumberForm>& form) {
    if (picture) picture->add(area, before, after, form);
  };
  const auto differences = files.compare({options.form, options.tolerance()}, visit);
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
}

}  // namespace

void addDiffCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("diff", "What differs between two database files", bothFiles, diffOrTrouble);
  command.footer(
      "Exit codes of this command: 0 the same, 1 different, 2 trouble of any kind.\n\n"
      "Compared are metadata, screens, blocks (found by screen, type and rectangle), generic data and measurements;\n"
      "not the times and the keys of rows. Without a tolerance cells differ when a bit does.\n"
      "Numbers, tolerances and the picture are scaled where the form that is kept with the blocks says so.\n"
      "The picture shows B - A in cool to warm colours, zero in the middle; what a tolerance lets pass is drawn as 0.\n"
      "Regions of more than 1280 x 800 cells are made smaller: a pixel then shows the largest difference of its "
      "cells.");
  command.add_option("A", options.before, "The first database file")->required();
  command.add_option("B", options.after, "The second database file")->required();
  command.add_option("--key-file-b", options.keyFileAfter, "The key of B is this file's first line [as for A]")
      ->type_name("FILE");
  addForm(command, options.form, "Type of the numbers in a cell (uint16, float32, ...) [as kept with the blocks]");
  CLI::Option* absolute = command.add_option("--atol", options.absolute, "Numbers this far apart count as equal");
  absolute->check(CLI::NonNegativeNumber);
  command.add_option("--rtol", options.relative, "The same, as a share of the larger of the two")
      ->check(CLI::NonNegativeNumber)
      ->excludes(absolute);
  addPictureOptions(command, options);
  addJsonFlag(command, options.json);
}

}  // namespace tovrtool
