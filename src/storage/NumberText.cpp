#include "storage/NumberText.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <stdexcept>

namespace tovr {
namespace {

bool outOfRange(long long value) { return value < INT_MIN || value > INT_MAX; }

}  // namespace

int intOrZero(const char* text) {
  if (text == nullptr) return 0;
  const long long value = std::strtoll(text, nullptr, 10);
  return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

int intOrThrow(const char* text) {
  if (text == nullptr) throw std::invalid_argument("invalid stoi argument");
  char* end = nullptr;
  const long long value = std::strtoll(text, &end, 10);  // a number too long for it gives its largest: out of range
  if (end == text) throw std::invalid_argument("invalid stoi argument");
  if (outOfRange(value)) throw std::out_of_range("stoi argument out of range");
  return static_cast<int>(value);
}

}  // namespace tovr
