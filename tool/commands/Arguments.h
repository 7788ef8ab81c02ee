// Values on the command line that several commands take.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <utility>

#include "tool/cells/NpyFile.h"
#include "tool/cells/Rect.h"
#include "tool/io/ByteOutput.h"

namespace tovrtool {

void addOutput(CLI::App& command, OutputOptions& options);
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
// A type of the numbers in a cell. Dtype or std::optional<Dtype>.
CLI::Option* addDtype(CLI::App& command, Dtype& dtype, const std::string& description);
CLI::Option* addDtype(CLI::App& command, std::optional<Dtype>& dtype, const std::string& description);
// Two finite numbers, the first below the second.
CLI::Option* addNumberRange(CLI::App& command, const std::string& name, std::optional<std::pair<double, double>>& range,
                            const std::string& description);
// The same, from 0 to 100.
CLI::Option* addPercentRange(CLI::App& command, const std::string& name,
                             std::optional<std::pair<double, double>>& range, const std::string& description);
CLI::Option* addSize(CLI::App& command, const std::string& name, CellPair& size, const std::string& description);

}  // namespace tovrtool
