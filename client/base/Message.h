// Messages for the person at the terminal: standard error, one line each.
#pragma once

#include <fmt/core.h>

#include <string>
#include <utility>

namespace tovrtool {

// "tovrdb: TEXT", unless messages are silenced.
void message(const std::string& text);
template <class First, class... More>
void message(fmt::format_string<First, More...> text, First&& first, More&&... more) {
  message(fmt::format(text, std::forward<First>(first), std::forward<More>(more)...));
}
void silenceMessages();
bool messagesAreSilent();

// "tovrdb: TEXT", always: why the program fails. Long texts lose their middle.
void complain(const std::string& text);

// The text on one line, as a stored name may be shown: control characters and those that turn the direction of writing
// become "\u001b", bytes that are not UTF-8 the replacement character. A text of more than `most` bytes loses its
// middle.
constexpr std::size_t kLongestLine = 4000;  // dozens of names of usual length
std::string printable(const std::string& text, std::size_t most = kLongestLine);

}  // namespace tovrtool
