// Values on the command line that several commands take.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <utility>

#include "tool/files/ByteOutput.h"
#include "tool/forms/NpyFile.h"
#include "tool/forms/Rect.h"

namespace tovrtool {

void addOutput(CLI::App& command, OutputOptions& options);
CLI::Option* addFile(CLI::App& command, std::string& file);
CLI::Option* addRect(CLI::App& command, std::optional<Rect>& rect, const std::string& description);
CLI::Option* addPosition(CLI::App& command, const std::string& name, std::optional<CellPair>& position,
                         const std::string& description);
// A type of the numbers in a cell. Dtype or std::optional<Dtype>.
CLI::Option* addDtype(CLI::App& command, Dtype& dtype, const std::string& description);
CLI::Option* addDtype(CLI::App& command, std::optional<Dtype>& dtype, const std::string& description);
// Two finite numbers, the first below the second.
CLI::Option* addNumberRange(CLI::App& command, const std::string& name, std::optional<std::pair<double, double>>& range,
                            const std::string& description);
CLI::Option* addSize(CLI::App& command, const std::string& name, CellPair& size, const std::string& description);

}  // namespace tovrtool
