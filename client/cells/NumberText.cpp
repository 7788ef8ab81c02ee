#include "client/cells/NumberText.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

namespace tovrdb {
namespace {

constexpr int kMostDecimals = 15;
constexpr double kPlainBelow = 1e15;  // larger numbers are written as powers of ten

}  // namespace

std::string numberText(double value) { return fmt::format("{}", value); }

std::string numberText(double value, double step) {
  if (!(step > 0) || !std::isfinite(step) || std::abs(value) >= kPlainBelow) return numberText(value);
  const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step))));
  if (decimals > kMostDecimals) return numberText(value);
  std::string text = fmt::format("{:.{}f}", value, decimals);
  if (decimals > 0) text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

}  // namespace tovrdb
