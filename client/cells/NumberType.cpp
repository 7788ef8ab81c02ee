#include "client/cells/NumberType.h"

#include <fmt/format.h>

#include <stdexcept>

namespace tovrdb {
namespace {

// A single byte has no order, so "<u1" is "|u1".
bool isDescr(const std::string& text, const NumberTraits& traits) {
  if (text == traits.descr) return true;
  return traits.bytes == 1 && text.size() == 3 && text[0] == '<' && text.substr(1) == traits.descr.substr(1);
}

}  // namespace

NumberType parseNumberType(const std::string& text) {
  std::size_t index = 0;
  for (const NumberTraits& traits : kNumberTypes) {
    if (text == traits.name || isDescr(text, traits)) return static_cast<NumberType>(index);
    ++index;
  }
  throw std::invalid_argument(fmt::format("the type {} is not one of {}", text, fmt::join(numberTypeNames(), ", ")));
}

std::string nameOf(NumberType type) { return std::string(traitsOf(type).name); }

std::vector<std::string> numberTypeNames() {
  std::vector<std::string> names;
  for (const NumberTraits& traits : kNumberTypes) names.emplace_back(traits.name);
  return names;
}

}  // namespace tovrdb
