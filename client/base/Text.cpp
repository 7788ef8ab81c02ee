#include "client/base/Text.h"

#include <fmt/format.h>
#include <utf8cpp/utf8.h>

#include <algorithm>
#include <iterator>

namespace tovrdb {
namespace {

bool steersTerminal(char32_t point) {
  return point < 0x20 || (point >= 0x7F && point < 0xA0) || point == 0x061C || point == 0x200E || point == 0x200F ||
         (point >= 0x2028 && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
}

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

std::string withoutMiddle(std::string_view text, std::size_t most) {
  if (text.size() <= most) return std::string(text);
  const std::string_view head = firstBytes(text, most * 3 / 4);
  std::size_t tail = text.size() - most / 4;
  while (tail < text.size() && continuesCharacter(text[tail])) ++tail;
  return fmt::format("{} [... {} bytes ...] {}", head, tail - head.size(), text.substr(tail));
}

}  // namespace

std::string shortList(const std::vector<std::string>& items, std::string_view separator) {
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

std::string counted(std::size_t number, std::string_view singular) {
  return fmt::format("{} {}{}", number, singular, number == 1 ? "" : "s");
}

std::size_t characters(std::string_view text) {
  const std::string valid = validText(text);
  return static_cast<std::size_t>(utf8::unchecked::distance(valid.begin(), valid.end()));
}

std::string_view firstBytes(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  while (most > 0 && continuesCharacter(text[most])) --most;
  return text.substr(0, most);
}

std::string validText(std::string_view text) {
  std::string valid;
  utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
  return valid;
}

std::string escapeControls(std::string_view text, LineEnds lineEnds) {
  std::string shown;
  for (auto at = text.begin(); at != text.end();) {
    const auto character = at;
    const char32_t point = utf8::unchecked::next(at);
    const bool kept = point == '\n' ? lineEnds == LineEnds::kKeep : !steersTerminal(point);
    if (kept) {
      shown.append(character, at);
    } else {
      shown += fmt::format("\\u{:04x}", static_cast<unsigned>(point));
    }
  }
  return shown;
}

std::string printable(std::string_view text, std::size_t most) {
  const std::string shown = withoutMiddle(text, most);
  const bool plain = std::all_of(shown.begin(), shown.end(), [](char c) { return c >= ' ' && c <= '~'; });
  return plain ? shown : escapeControls(validText(shown), LineEnds::kEscape);
}

}  // namespace tovrdb
