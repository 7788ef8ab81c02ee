#include "tool/commands/Arguments.h"

#include <fmt/core.h>

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <system_error>

#include "client/base/Text.h"
#include "client/reading/NumberForms.h"
#include "tool/io/Message.h"
namespace tovrdb::tool {
namespace {

std::pair<double, double> parseNumberRange(const std::string& text) {
  const char* const end = text.data() + text.size();
  double low = 0;
  double high = 0;
  const auto first = std::from_chars(text.data(), end, low);
  const bool parted = first.ec == std::errc() && first.ptr != end && *first.ptr == ',';
  const auto second = parted ? std::from_chars(first.ptr + 1, end, high) : first;
  if (!parted || second.ec != std::errc() || second.ptr != end || !std::isfinite(low) || !std::isfinite(high) ||
      low >= high) {
    throw std::invalid_argument(fmt::format("'{}' is not of the form LOW,HIGH, two numbers, LOW < HIGH", text));
  }
  return {low, high};
}

std::pair<double, double> parsePercentRange(const std::string& text) {
  const auto range = parseNumberRange(text);
  if (range.first < 0 || range.second > 100) throw std::invalid_argument("percents lie from 0 to 100");
  return range;
}

// Permissions with which the owner can still replace the file.
unsigned int parseMode(const std::string& text) {
  unsigned int mode = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), mode, 8);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size() || mode > 0777) {
    throw std::invalid_argument(fmt::format("'{}' is not an octal number from 0600 to 0777", text));
  }
  if ((mode & kOwnerOnlyFile) != kOwnerOnlyFile) {
    throw std::invalid_argument(
        fmt::format("with {} the owner could not read and write it; 0600 lets nobody else", text));
  }
  return mode;
}

}  // namespace

CLI::Validator atLeast(double least) {
  return CLI::Validator(
      [least](const std::string& text) {
        double value = 0;
        if (!CLI::detail::lexical_cast(text, value) || value >= least) return std::string();
        return fmt::format("must be at least {}; got {}", least, text);
      },
      "");
}

CLI::Validator atMost(int most) {
  return CLI::Validator(
      [most](const std::string& text) {
        int value = 0;
        if (CLI::detail::lexical_cast(text, value) && value >= 0 && value <= most) return std::string();
        return fmt::format("must be a whole number from 0 to {}; got '{}'", most, text);
      },
      "");
}

void addOutput(CLI::App& command, OutputOptions& options) {
  command.add_option("-o,--output", options.path, "The file to write; - is standard output")
      ->required()
      ->type_name("FILE");
  command.add_flag("--force", options.force, "Replace the output file if it exists");
  addMode(command, options.mode);
}

CLI::Option* addMode(CLI::App& command, unsigned int& mode, const std::string& what) {
  return addParsed(command, "--mode", mode, parseMode,
                   what + ", octal; on Windows those of the folder count [0600: for its owner only]")
      ->type_name("MODE");
}

void addJsonFlag(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "Print JSON; the manual tells its form");
}

CLI::Option* addFile(CLI::App& command, std::string& file) {
  return command.add_option("FILE", file, "The database file")->required();
}

CLI::Option* addScreenName(CLI::App& command, std::string& name) {
  return command.add_option("--screen", name, "The screen's name, in databases of type 1");
}

CLI::Option* addRect(CLI::App& command, std::optional<Rect>& rect, const std::string& description) {
  return addParsed(command, "--rect", rect, parseRect, description)->type_name("L,T,R,B");
}

CLI::Option* addPosition(CLI::App& command, const std::string& name, std::optional<CellPair>& position,
                         const std::string& description) {
  return addParsed(command, name, position, parsePosition, description)->type_name("L,T");
}

CLI::Option* addDtype(CLI::App& command, std::optional<NumberType>& dtype, const std::string& description) {
  return addParsed(command, "--dtype", dtype, parseNumberType, description)->type_name("TYPE");
}

CLI::Option* addNumberRange(CLI::App& command, const std::string& name, std::optional<std::pair<double, double>>& range,
                            const std::string& description) {
  return addParsed(command, name, range, parseNumberRange, description)->type_name("LOW,HIGH");
}

CLI::Option* addPercentRange(CLI::App& command, const std::string& name,
                             std::optional<std::pair<double, double>>& range, const std::string& description) {
  return addParsed(command, name, range, parsePercentRange, description)->type_name("LOW,HIGH");
}

CLI::Option* addSize(CLI::App& command, const std::string& name, CellPair& size, const std::string& description) {
  return addParsed(command, name, size, parseSize, description)->type_name("COLUMNSxROWS");
}

void addForm(CLI::App& command, FormOptions& options, const std::string& dtypeDescription) {
  addDtype(command, options.dtype, dtypeDescription);
  addParsed(command, "--scale", options.scale, parseScale, "What 1 stands for: 1/16384, 0.5 [as kept with the block]")
      ->type_name("NUMBER");
  addParsed(command, "--unit", options.unit, parseUnit, "The unit of the scaled numbers [as kept with the block]")
      ->type_name("TEXT");
}

void addCells(CLI::App& command, CellQuery& query) {
  CLI::Option* type = addCoefType(command, query.type);
  CLI::Option* screen =
      command.add_option("--screen", query.screen, "The screen's name; needed in databases of type 1");
  addRect(command, query.rect, "The cells, both edges inclusive [the whole area, if there is one]");
  CLI::Option* mosaic =
      command.add_flag("--mosaic", query.mosaic, "Read across areas; where they overlap, the first stored one counts");
  command.add_option("--fill", query.fill, "With --mosaic: the number, as stored, of cells that no area covers")
      ->type_name("NUMBER")
      ->needs(mosaic);
  command.add_option("--area", query.areaId, "Instead of --type: the area with this id, as coef list shows it")
      ->type_name("ID")
      ->excludes(type)
      ->excludes(screen)
      ->excludes(mosaic);
  addForm(command, query.form, "Type of the numbers in a cell (uint16, float32, ...) [as kept with the block]");
}

void noteAnswer(const CellAnswer& answer, const FormOptions& options) {
  if (answer.overlapping) message("note: areas overlap; where they do, the one that was stored first counts");
  if (answer.filled > 0)
    message("note: filled {} that no area covers", counted(static_cast<std::size_t>(answer.filled), "cell"));
  for (const StoredArea& area : answer.areas) {
    const auto kept = keptForm(area);
    if (!options.dtype || !kept || *options.dtype == kept->dtype) continue;
    message("note: area {} keeps its numbers as {}; their bytes are read as {}, as was asked for", area.id,
            toText(*kept), nameOf(*options.dtype));
    break;
  }
}

}  // namespace tovrdb::tool
