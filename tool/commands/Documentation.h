// The command line as plain data, and what is made from it: the manual page and the shells' completions.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tovrdb::tool {

struct OptionPage {
  std::vector<std::string> names;    // "-o", "--output"; empty for a positional
  std::string value;                 // "FILE"; empty for a flag
  std::vector<std::string> choices;  // all values that it takes; empty if there is no short list
  std::string description;
  bool required;
};

struct CommandPage {
  std::string name;  // "coef get"; empty for the program itself
  std::string description;
  std::string footer;
  std::vector<OptionPage> positionals;
  std::vector<OptionPage> options;
  std::vector<std::string> subcommands;  // "get", with the pages of all of them elsewhere in the list
};

// The values of a CLI::IsMember, which adds "{first,second}" to the name of the type, or the number types.
std::vector<std::string> choicesOf(const CLI::Option& option);

// The program first, then every command that can be named, depth first.
std::vector<CommandPage> commandPages(const CLI::App& app);

// The manual page, section 1, with its part about JSON, in the man macros of roff (man(7)).
std::string manualPage(const std::vector<CommandPage>& pages, const std::string& jsonManual);

// Scripts that complete the command line.
std::string bashCompletion(const std::vector<CommandPage>& pages);
std::string zshCompletion(const std::vector<CommandPage>& pages);
std::string fishCompletion(const std::vector<CommandPage>& pages);

}  // namespace tovrdb::tool
