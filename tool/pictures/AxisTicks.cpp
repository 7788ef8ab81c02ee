#include "tool/pictures/AxisTicks.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "client/cells/NumberForm.h"

namespace tovrdb::tool {
namespace {

constexpr double kPowerFrom = 1e7;  // larger numbers, and smaller steps, are written in scientific notation
constexpr double kPowerBelow = 1e-5;

// The smallest of 1, 2, 5, 10, 20, ... (and 0.5, 0.2, ...) that is at least `step`.
double roundStep(double step) {
  const double power = std::pow(10.0, std::floor(std::log10(step)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= step * (1.0 - 1e-9)) return factor * power;
  }
  return 10.0 * power;
}

Ticks multiples(double low, double high, int most, double step) {
  Ticks ticks{step, {}};
  const double slack = 1e-9;  // of a step: 0.3 is a multiple of 0.1
  const double first = std::ceil(low / step - slack);
  const double last = std::floor(high / step + slack);
  for (int i = 0; i < most && first + i <= last; ++i) ticks.values.push_back((first + i) * step);
  return ticks;
}

Ticks ticksOfStepFrom(double low, double high, int most, double least) {
  double step = roundStep(std::max({high / most - low / most, least, std::numeric_limits<double>::min()}));
  if (!std::isfinite(step)) return {std::numeric_limits<double>::max(), {}};  // no two round numbers are that far apart
  const auto count = [&] { return std::floor(high / step + 1e-9) - std::ceil(low / step - 1e-9) + 1; };
  while (std::isfinite(step) && count() > most) step = roundStep(step * 1.5);
  return multiples(low, high, most, step);
}

}  // namespace

Ticks roundTicks(double low, double high, int most) {
  // Numbers of this size that differ by less are equal.
  const double least = std::max(std::abs(low), std::abs(high)) * 1e-14;
  return ticksOfStepFrom(low, high, most, least);
}

Ticks wholeTicks(double low, double high, int most) { return ticksOfStepFrom(low, high, most, 1.0); }

std::string tickText(double value, double step) {
  const double size = std::max(std::abs(value), step);
  if (value != 0 && (size >= kPowerFrom || step < kPowerBelow)) {
    const int digits = static_cast<int>(std::lround(std::floor(std::log10(size)) - std::floor(std::log10(step)))) + 1;
    return fmt::format("{:.{}g}", value, std::clamp(digits, 1, 17));
  }
  const int decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step) + 1e-9)), 0, 15);
  return fmt::format("{:.{}f}", value == 0 ? 0.0 : value, decimals);
}

std::vector<TickLabel> barLabels(double low, double high, int most) {
  const Ticks ticks = roundTicks(low, high, most);
  std::vector<TickLabel> labels;
  std::set<std::string> texts;
  for (const double value : ticks.values) {
    labels.push_back({value, tickText(value, ticks.step)});
    texts.insert(labels.back().text);
  }
  if (labels.size() >= 2 && texts.size() == labels.size()) return labels;
  return {{low, numberText(low)}, {high, numberText(high)}};
}

}  // namespace tovrdb::tool
