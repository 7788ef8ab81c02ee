// The library's lines on standard output: the only log there is.
#pragma once

#include <string>

namespace tovr {

// The text and an end of line, flushed.
void logLine(const std::string& text);

// What printf(text) prints wherever that is defined ("%%" gives "%"), without a newline. Any other "%" is printed as
// it stands: a text from a hostile file must never fetch arguments that are not there. Null prints nothing.
void printErrorText(const char* text);

}  // namespace tovr
