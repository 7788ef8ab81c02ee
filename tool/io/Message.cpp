#include "tool/io/Message.h"

#include <cstdio>

namespace tovrtool {

namespace {

bool silent = false;

}  // namespace

void message(const std::string& text) {
  if (!silent) complain(text);
}

void silenceMessages() { silent = true; }

bool messagesAreSilent() { return silent; }

void complain(const std::string& text) { std::fprintf(stderr, "tovrdb: %s\n", printable(text).c_str()); }

std::string printable(const std::string& text) {
  std::string shown = text;
  for (char& character : shown) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x20 || byte == 0x7F) character = '?';
  }
  return shown;
}

}  // namespace tovrtool
