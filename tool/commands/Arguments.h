// Values on the command line that several commands take.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "client/cells/NumberForm.h"
#include "client/cells/NumberType.h"
#include "client/cells/Rect.h"
#include "client/reading/CellQuery.h"
#include "tool/io/ByteOutput.h"
namespace tovrdb::tool {

// An option whose text `parse` turns into the value; its std::invalid_argument becomes a usage error.
template <class Value, class Parse>
CLI::Option* addParsed(CLI::App& command, const std::string& name, Value& value, Parse parse,
                       const std::string& description) {
  return command.add_option_function<std::string>(
      name,
      [&value, parse, name](const std::string& text) {
        try {
          value = parse(text);
        } catch (const std::invalid_argument& error) {
          throw CLI::ValidationError(name, error.what());
        }
      },
      description);
}

// Checks a number; a text that is not a number passes, since its conversion fails next.
CLI::Validator atLeast(double least);
// A whole number from 0.
CLI::Validator atMost(int most);

// -o, --force and --mode.
void addOutput(CLI::App& command, OutputOptions& options);
// --mode, of a file with data in the clear.
CLI::Option* addMode(CLI::App& command, unsigned int& mode, const std::string& what = "Permissions of the file");
// --json.
void addJsonFlag(CLI::App& command, bool& json);
CLI::Option* addFile(CLI::App& command, std::string& file);
CLI::Option* addScreenName(CLI::App& command, std::string& name);
// A coefficient type. std::int32_t or std::optional<std::int32_t>.
template <class Type>
CLI::Option* addCoefType(CLI::App& command, Type& type) {
  return command.add_option("--type", type, "The coefficient type (not 16, which means none)");
}
CLI::Option* addRect(CLI::App& command, std::optional<Rect>& rect, const std::string& description);
CLI::Option* addPosition(CLI::App& command, const std::string& name, std::optional<CellPair>& position,
                         const std::string& description);
// A type of the numbers in a cell.
CLI::Option* addDtype(CLI::App& command, std::optional<NumberType>& dtype, const std::string& description);
// Two finite numbers, the first below the second.
CLI::Option* addNumberRange(CLI::App& command, const std::string& name, std::optional<std::pair<double, double>>& range,
                            const std::string& description);
// The same, from 0 to 100.
CLI::Option* addPercentRange(CLI::App& command, const std::string& name,
                             std::optional<std::pair<double, double>>& range, const std::string& description);
CLI::Option* addSize(CLI::App& command, const std::string& name, CellPair& size, const std::string& description);

// Which cells a command reads, and how their numbers are read.

// --dtype, --scale and --unit.
void addForm(CLI::App& command, FormOptions& options, const std::string& dtypeDescription);

// --type, --screen, --rect, --area, --mosaic, --fill, and the form.
void addCells(CLI::App& command, CellQuery& query);

// Prints notes about the answer: overlapping areas, filled cells, numbers read as another type than the stored one.
void noteAnswer(const CellAnswer& answer, const FormOptions& options);

}  // namespace tovrdb::tool
