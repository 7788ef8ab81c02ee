// Messages for the person at the terminal: standard error, one line each.
#pragma once

#include <string>

namespace tovrtool {

// "tovrdb: TEXT", unless messages are silenced.
void message(const std::string& text);
void silenceMessages();
bool messagesAreSilent();

// "tovrdb: TEXT", always: why the program fails.
void complain(const std::string& text);

// The text with control characters shown as '?', so that a stored name cannot steer a terminal.
std::string printable(const std::string& text);

}  // namespace tovrtool
