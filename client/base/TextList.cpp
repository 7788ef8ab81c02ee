#include "client/base/TextList.h"

#include <fmt/format.h>

#include <algorithm>

namespace tovrtool {

std::string shortList(const std::vector<std::string>& items, const std::string& separator) {
  constexpr std::size_t kMost = 8;
  if (items.empty()) return "none";
  const auto shown = static_cast<std::ptrdiff_t>(std::min(items.size(), kMost));
  const std::string text = fmt::format("{}", fmt::join(items.begin(), items.begin() + shown, separator));
  return items.size() <= kMost ? text : fmt::format("{} and {} more", text, items.size() - kMost);
}

std::string grouped(std::int64_t number) {
  std::string text = std::to_string(number);
  const std::size_t sign = number < 0 ? 1 : 0;
  for (std::size_t at = text.size(); at > 3 + sign;) text.insert(at -= 3, 1, ',');
  return text;
}

std::string counted(std::size_t number, const std::string& singular) {
  return fmt::format("{} {}{}", number, singular, number == 1 ? "" : "s");
}

}  // namespace tovrtool
