#include "client/cells/NumberForm.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <system_error>

#include "client/base/Text.h"

namespace tovrdb {
namespace {

constexpr std::size_t kLongestVersion = 60;  // characters, as the column is declared
constexpr char kTimes[] = " x ";
constexpr char kScale[] = ", scale ";
constexpr char kUnit[] = ", unit ";

constexpr int kMostDecimals = 15;
constexpr double kPlainBelow = 1e15;  // larger numbers are written as powers of ten

// The whole text as a finite number above 0, or 0 if it is not one.
double positiveNumber(const std::string& text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc() && parsed.ptr == end && std::isfinite(number) && number > 0 ? number : 0;
}

// Cuts the text at the last `mark` and returns what followed it; empty if there is no mark.
std::string cutAfter(std::string& text, const std::string& mark) {
  const std::size_t at = text.rfind(mark);
  if (at == std::string::npos) return {};
  std::string after = text.substr(at + mark.size());
  text.erase(at);
  return after;
}

struct CountedForm {
  NumberForm form;
  std::size_t values = 0;
};

// Parses the bracket contents; throws std::invalid_argument if they are not in our format.
CountedForm parseForm(std::string text) {
  CountedForm counted;
  const std::string unit = cutAfter(text, kUnit);
  const std::string scale = cutAfter(text, kScale);
  const std::string dtype = cutAfter(text, kTimes);
  counted.form.dtype = parseNumberType(dtype);
  if (!scale.empty()) counted.form.scale = parseScale(scale);
  counted.form.unit = parseUnit(unit);
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), counted.values);
  if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) throw std::invalid_argument("no count");
  return counted;
}

}  // namespace

Scale parseScale(const std::string& text) {
  const std::size_t bar = text.find('/');
  Scale scale;
  scale.times = positiveNumber(text.substr(0, bar));
  scale.over = bar == std::string::npos ? 1 : positiveNumber(text.substr(bar + 1));
  scale.text = text;
  if (!(scale.times > 0) || !(scale.over > 0) || !std::isnormal(scale.of(1))) {
    throw std::invalid_argument("'" + text + "' is not a number above 0, such as 0.5 or 1/16384");
  }
  return scale;
}

std::string parseUnit(const std::string& text) {
  const auto forbidden = [](char c) {
    return c == '[' || c == ']' || (static_cast<unsigned char>(c) < 0x20) || c == 0x7F;
  };
  if (std::any_of(text.begin(), text.end(), forbidden) || text.find(kUnit) != std::string::npos) {
    throw std::invalid_argument("a unit is a text without brackets and control characters, such as cd/m2");
  }
  return text;
}

std::string NumberForm::text(double number) const {
  if (dtype == NumberType::kFloat32 && !isScaled()) return fmt::format("{}", static_cast<float>(number));
  return traitsOf(dtype).isFloating || !isScaled() ? numberText(number) : numberText(number, scale.of(1));
}

bool operator==(const NumberForm& one, const NumberForm& other) {
  return one.dtype == other.dtype && one.scale.of(1) == other.scale.of(1) && one.unit == other.unit;
}

std::string toText(const NumberForm& form) {
  std::string text = nameOf(form.dtype);
  if (form.isScaled()) text += kScale + form.scale.text;
  if (!form.unit.empty()) text += kUnit + form.unit;
  return text;
}

std::string toText(const NumberForm& form, std::int32_t cellBytes) {
  return std::to_string(static_cast<std::size_t>(cellBytes) / traitsOf(form.dtype).bytes) + kTimes + toText(form);
}

std::vector<double> endsOf(const NumberForm& form) {
  const NumberTraits& traits = traitsOf(form.dtype);
  if (traits.isFloating) return {0};
  const int bits = static_cast<int>(traits.bytes) * 8;
  if (traits.isSigned) {
    return {form.scale.of(-std::ldexp(1.0, bits - 1)), form.scale.of(std::ldexp(1.0, bits - 1) - 1)};
  }
  return {0, form.scale.of(std::ldexp(1.0, bits) - 1)};
}

std::optional<NumberForm> chosenForm(const FormOptions& options, const std::optional<NumberForm>& kept) {
  if (!options.dtype && !kept) return std::nullopt;
  NumberForm form;
  if (kept && (!options.dtype || *options.dtype == kept->dtype)) form = *kept;
  if (options.dtype) form.dtype = *options.dtype;
  if (options.scale) form.scale = *options.scale;
  if (options.unit) form.unit = *options.unit;
  return form;
}

VersionText splitVersion(const std::string& version, std::int32_t cellBytes) {
  const std::size_t open = version.rfind('[');
  if (version.empty() || version.back() != ']' || open == std::string::npos) return {version, std::nullopt};
  try {
    const CountedForm counted = parseForm(version.substr(open + 1, version.size() - open - 2));
    std::string text = version.substr(0, open);
    if (!text.empty() && text.back() == ' ') text.pop_back();
    const bool fits = cellBytes > 0 &&
                      counted.values == static_cast<std::size_t>(cellBytes) / traitsOf(counted.form.dtype).bytes &&
                      static_cast<std::size_t>(cellBytes) % traitsOf(counted.form.dtype).bytes == 0;
    if (!fits) return {text, std::nullopt};
    return {text, counted.form};
  } catch (const std::invalid_argument&) {  // another program's brackets
    return {version, std::nullopt};
  }
}

std::string joinVersion(const std::string& text, const std::optional<NumberForm>& form, std::int32_t cellBytes) {
  const std::string inBrackets = form ? (text.empty() ? "[" : " [") + toText(*form, cellBytes) + "]" : "";
  const std::size_t ofText = characters(text);
  const std::size_t ofForm = characters(inBrackets);
  if (ofText + ofForm <= kLongestVersion) return text + inBrackets;
  if (!form) {
    throw std::invalid_argument(fmt::format(
        "a block keeps {} characters of text, and the version text has {}: shorten it", kLongestVersion, ofText));
  }
  throw std::invalid_argument(
      fmt::format("a block keeps {} characters of text: the version text has {}, and the form of the numbers beside it "
                  "{}; shorten the text or the unit",
                  kLongestVersion, ofText, ofForm));
}

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
