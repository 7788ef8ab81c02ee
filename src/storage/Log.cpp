#include "storage/Log.h"

#include <cstdio>

namespace tovr {

void logLine(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void printErrorText(const char* text) {
  if (text == nullptr) return;
  for (; *text != '\0'; ++text) {
    std::fputc(*text, stdout);
    if (text[0] == '%' && text[1] == '%') ++text;
  }
}

}  // namespace tovr
