#include "client/base/Message.h"

#include <algorithm>
#include <cstdio>

#include "client/base/JsonText.h"

namespace tovrtool {

namespace {

bool silent = false;

// Whether a character of UTF-8 begins at `at`.
bool begins(const std::string& text, std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80; }

std::string shortened(const std::string& text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t head = most * 3 / 4;
  std::size_t tail = text.size() - most / 4;
  while (head > 0 && !begins(text, head)) --head;
  while (tail < text.size() && !begins(text, tail)) ++tail;
  return fmt::format("{} [... {} bytes ...] {}", text.substr(0, head), tail - head, text.substr(tail));
}

}  // namespace

void message(const std::string& text) {
  if (!silent) complain(text);
}

void silenceMessages() { silent = true; }

bool messagesAreSilent() { return silent; }

void complain(const std::string& text) { std::fprintf(stderr, "tovrdb: %s\n", printable(text).c_str()); }

std::string printable(const std::string& text, std::size_t most) {
  const std::string shown = shortened(text, most);
  const bool plain = std::all_of(shown.begin(), shown.end(), [](char c) { return c >= ' ' && c <= '~'; });
  return plain ? shown : escapeControls(validText(shown), LineEnds::kEscape);
}

}  // namespace tovrtool
