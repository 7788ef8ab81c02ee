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

// "tovrdb: TEXT", always: why the program fails.
void complain(const std::string& text);

// The text with control characters shown as '?', so that a stored name cannot steer a terminal.
std::string printable(const std::string& text);

}  // namespace tovrtool
