#include <fmt/format.h>

#include <vector>

#include "client/base/Error.h"
#include "client/cells/NpyFile.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/Message.h"
#include "tool/sample/WallModel.h"

namespace tovrdb::tool {
namespace {

constexpr int kCellBytes = 2 * 9;

struct Options {
  CellPair size{1920, 1080};
  CellPair cabinet{160, 180};
  std::optional<Rect> rect;
  std::uint64_t seed = 1;
  bool raw = false;
  OutputOptions output;
};

void sample(Context& context, const Options& options) {
  const Rect wall{0, 0, options.size.x - 1, options.size.y - 1};
  const Rect rect = options.rect.value_or(wall);
  if (!holds(wall, rect)) {
    throw Error(kInvalid, "the rectangle {} lies outside the wall, {}", toText(rect), toText(wall));
  }
  ByteOutput output(context.output, options.output, "");
  output.requireRoom(static_cast<double>(rowsOf(rect)) * static_cast<double>(columnsOf(rect)) * kCellBytes);
  if (!options.raw) {
    output.write(npyHeader(NumberType::kUint16,
                           {static_cast<std::size_t>(rowsOf(rect)), static_cast<std::size_t>(columnsOf(rect)), 9}));
  }
  const WallModel model({options.size.x, options.size.y, options.cabinet.x, options.cabinet.y, options.seed});
  WallFigures figures;
  std::vector<unsigned char> row;
  for (std::int32_t y = rect.top; y <= rect.bottom; ++y) {
    row.clear();
    for (std::int32_t x = rect.left; x <= rect.right; ++x) {
      const Eigen::Matrix3d correction = model.correction(x, y);
      figures.add(correction);
      appendBytes(WallModel::fixedPoint(correction), row);
    }
    output.write(row);
  }
  output.commit();
  message(
      fmt::format("SYNTHETIC data, computed from a model of an LED wall; nothing was measured. Cells {} of a wall of "
                  "{} x {}, 18 bytes "
                  "per cell: a 3x3 matrix in row-major order, unsigned Q2.14 (16384 is 1.0)",
                  toText(rect), options.size.x, options.size.y));
  message(figures.text());
}

}  // namespace

void addSampleCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("sample", "Compute SYNTHETIC correction coefficients of an LED wall", sample);
  command.footer(
      R"(The array: uint16, rows x columns x 9, a row-major 3x3 matrix per cell in unsigned Q2.14 (16384 is 1.0).
Row i says how much of the target's red, green and blue the cell's LED i gives. Nothing was measured.)");
  addOutput(command, options.output);
  addSize(command, "--size", options.size, "The wall's cells [1920x1080]");
  addRect(command, options.rect, "Only this part of the wall, the same to the byte as cut out of the whole");
  addSize(command, "--cabinet", options.cabinet, "The cells of a cabinet [160x180]");
  command.add_option("--seed", options.seed, "Another number gives another wall")
      ->check(atLeast(0))
      ->capture_default_str();
  command.add_flag("--raw", options.raw, "Write the bare cells without a header");
}

}  // namespace tovrdb::tool
