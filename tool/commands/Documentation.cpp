#include "tool/commands/Documentation.h"

#include <fmt/format.h>

#include "client/cells/NumberType.h"

namespace tovrdb::tool {
namespace {

OptionPage pageOf(const CLI::Option& option) {
  OptionPage page;
  for (const std::string& name : option.get_snames()) page.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) page.names.push_back("--" + name);
  const bool flag = option.get_items_expected_max() == 0;
  if (!flag) page.value = page.names.empty() ? option.get_single_name() : option.get_type_name();
  if (!flag) page.choices = choicesOf(option);
  page.description = option.get_description();
  page.required = option.get_required();
  return page;
}

std::vector<const CLI::App*> subcommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_name().empty(); });
}

void collect(const CLI::App& app, const std::string& name, std::vector<CommandPage>& pages) {
  CommandPage page;
  page.name = name;
  page.description = app.get_description();
  page.footer = app.get_footer();
  for (const CLI::Option* option : app.get_options()) {
    (option->get_positional() ? page.positionals : page.options).push_back(pageOf(*option));
  }
  const auto subcommands = subcommandsOf(app);
  for (const CLI::App* command : subcommands) page.subcommands.push_back(command->get_name());
  pages.push_back(page);
  for (const CLI::App* command : subcommands) {
    collect(*command, name.empty() ? command->get_name() : name + " " + command->get_name(), pages);
  }
}

// Escapes backslashes and dashes, and control characters of roff at the beginning of a line.
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

// Text whose line breaks are kept, such as examples and tables.
std::string verbatim(const std::string& text) { return ".nf\n" + escaped(text) + "\n.fi\n"; }

std::string commandSection(const CommandPage& page, const std::string& commonFooter) {
  std::string text = ".SS \"tovrdb " + escaped(page.name) + "\"\n" + escaped(page.description) + "\n" + entries(page);
  if (!page.footer.empty() && page.footer != commonFooter) text += ".PP\n" + verbatim(page.footer);
  return text;
}

}  // namespace

std::vector<std::string> choicesOf(const CLI::Option& option) {
  if (option.check_lname("dtype")) return numberTypeNames();
  const std::string type = option.get_type_name();
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}');
  if (begin == std::string::npos || end == std::string::npos) return {};
  return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}

std::vector<CommandPage> commandPages(const CLI::App& app) {
  std::vector<CommandPage> pages;
  collect(app, "", pages);
  return pages;
}

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
