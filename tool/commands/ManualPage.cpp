#include "tool/commands/ManualPage.h"

#include <fmt/format.h>

namespace tovrdb::tool {
namespace {

// Backslashes and dashes are said literally; a line never begins with a control character.
std::string escaped(const std::string& text) {
  std::string out;
  bool lineStart = true;
  for (const char c : text) {
    if (lineStart && (c == '.' || c == '\'')) out += "\\&";
    if (c == '\\') {
      out += "\\e";
    } else {
      if (c == '-') out += '\\';
      out += c;
    }
    lineStart = c == '\n';
  }
  return out;
}

std::string entry(const OptionPage& option) {
  const bool positional = option.names.empty();
  std::string line = ".TP\n";
  if (positional) {
    line += "\\fI" + escaped(option.value) + "\\fR";
  } else {
    line += "\\fB" + escaped(fmt::format("{}", fmt::join(option.names, ", "))) + "\\fR";
    if (!option.value.empty()) line += " \\fI" + escaped(option.value) + "\\fR";
  }
  if (option.required && !positional) line += " (required)";
  return line + "\n" + escaped(option.description) + "\n";
}

std::string entries(const CommandPage& page) {
  std::string text;
  for (const OptionPage& option : page.positionals) text += entry(option);
  for (const OptionPage& option : page.options) text += entry(option);
  return text;
}

// Kept as it stands: examples and tables have lines of their own.
std::string verbatim(const std::string& text) { return ".nf\n" + escaped(text) + "\n.fi\n"; }

std::string commandSection(const CommandPage& page, const std::string& commonFooter) {
  std::string text = ".SS \"tovrdb " + escaped(page.name) + "\"\n" + escaped(page.description) + "\n" + entries(page);
  if (!page.footer.empty() && page.footer != commonFooter) text += ".PP\n" + verbatim(page.footer);
  return text;
}

}  // namespace

std::string manualPage(const std::vector<CommandPage>& pages, const std::string& jsonManual) {
  const CommandPage& program = pages.front();
  std::string text = ".TH TOVRDB 1 \"\" \"tovrdb " TOVRDB_VERSION
                     "\"\n.SH NAME\ntovrdb \\- calibration data of LED "
                     "screens in encrypted database files\n.SH SYNOPSIS\n\\fBtovrdb\\fR [\\fIoptions\\fR] "
                     "\\fIcommand\\fR ...\n.SH DESCRIPTION\n" +
                     verbatim(program.description) + ".SH OPTIONS\n" + entries(program) + ".SH COMMANDS\n";
  for (const CommandPage& page : pages) {
    if (!page.name.empty() && page.subcommands.empty()) text += commandSection(page, program.footer);
  }
  return text + ".SH \"JSON\"\n" + verbatim(jsonManual) + ".SH \"ENVIRONMENT AND EXIT STATUS\"\n" +
         verbatim(program.footer);
}

}  // namespace tovrdb::tool
