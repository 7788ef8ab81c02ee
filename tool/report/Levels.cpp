#include "tool/report/Levels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace tovrdb::tool {
namespace {

constexpr char kDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz!#$%&()*+-;,=>?@^_`{|}~";

constexpr double kLargest = 1e300;  // so that decoding levels does not overflow

double bounded(double number) { return std::clamp(number, -kLargest, kLargest); }

struct Span {
  double least = std::numeric_limits<double>::infinity();
  double most = -std::numeric_limits<double>::infinity();
  bool whole = true;
  bool complete = true;
};

Span spanOf(const std::vector<double>& numbers) {
  Span span;
  for (const double number : numbers) {
    if (!std::isfinite(number)) {
      span.complete = false;
      continue;
    }
    span.least = std::min(span.least, bounded(number));
    span.most = std::max(span.most, bounded(number));
    span.whole = span.whole && number == std::floor(number);
  }
  if (span.least > span.most) span.least = span.most = 0;  // nothing is finite
  return span;
}

double largestOf(int bits) { return std::ldexp(1.0, bits) - 1; }

void chooseLevels(const Span& span, int mostBits, Levels& levels) {
  levels.offset = span.least;
  if (span.least == span.most) return;
  const double range = span.most - span.least;
  for (const int bits : {8, 16}) {
    if (!span.whole || range > largestOf(bits) || bits > mostBits) continue;
    levels.bits = bits;
    return;
  }
  levels.bits = mostBits;
  levels.exact = false;
  levels.step = range / largestOf(mostBits);
  if (!(levels.step > 0)) levels.step = std::numeric_limits<double>::denorm_min();
}

}  // namespace

ReducedNumbers reduceBlocks(const std::vector<double>& numbers, std::int64_t columns, std::int64_t rows,
                            std::int64_t block) {
  ReducedNumbers reduced{(columns + block - 1) / block, (rows + block - 1) / block, {}, {}, {}};
  const auto size = static_cast<std::size_t>(reduced.columns * reduced.rows);
  const double none = std::numeric_limits<double>::quiet_NaN();
  reduced.least.assign(size, none);
  reduced.mean.assign(size, none);
  reduced.most.assign(size, none);
  std::vector<double> counts(size);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (!std::isfinite(numbers[i])) continue;
    const auto row = static_cast<std::int64_t>(i) / columns / block;
    const auto at = static_cast<std::size_t>(row * reduced.columns + static_cast<std::int64_t>(i) % columns / block);
    const double count = ++counts[at];
    if (count == 1) reduced.least[at] = reduced.most[at] = reduced.mean[at] = numbers[i];
    reduced.least[at] = std::min(reduced.least[at], numbers[i]);
    reduced.most[at] = std::max(reduced.most[at], numbers[i]);
    reduced.mean[at] += numbers[i] / count - reduced.mean[at] / count;  // never beyond its cells' range
  }
  return reduced;
}

Levels levelsOf(const std::vector<double>& numbers, int mostBits) {
  Levels levels;
  const Span span = spanOf(numbers);
  chooseLevels(span, mostBits, levels);
  std::vector<unsigned char> bytes;
  bytes.reserve(numbers.size() * static_cast<std::size_t>(levels.bits) / 8);
  for (const double number : numbers) {
    if (levels.bits == 0) break;
    const double exact = std::isfinite(number) ? (bounded(number) - levels.offset) / levels.step : 0;
    const auto level = static_cast<std::uint32_t>(std::clamp(std::round(exact), 0.0, largestOf(levels.bits)));
    bytes.push_back(static_cast<unsigned char>(level & 0xFF));
    if (levels.bits == 16) bytes.push_back(static_cast<unsigned char>(level >> 8));
  }
  levels.levels = packedText(bytes);
  if (span.complete) return levels;
  std::vector<bool> absent;
  for (const double number : numbers) absent.push_back(!std::isfinite(number));
  levels.absent = packedText(bitsOf(absent));
  return levels;
}

std::string packedText(const std::vector<unsigned char>& bytes) {
  std::string text(packedSize(bytes.size()), '0');
  for (std::size_t group = 0; group * 4 < bytes.size(); ++group) {
    std::uint32_t word = 0;
    for (std::size_t i = group * 4; i < group * 4 + 4; ++i) word = word << 8 | (i < bytes.size() ? bytes[i] : 0U);
    for (std::size_t i = 5; i-- > 0; word /= 85) text[group * 5 + i] = kDigits[word % 85];
  }
  return text;
}

std::vector<unsigned char> bitsOf(const std::vector<bool>& values) {
  std::vector<unsigned char> bytes((values.size() + 7) / 8);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i]) bytes[i / 8] = static_cast<unsigned char>(bytes[i / 8] | 1U << i % 8);
  }
  return bytes;
}

}  // namespace tovrdb::tool
