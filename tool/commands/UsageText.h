// Messages about a command line that cannot be parsed.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tovrdb::tool {

// The candidate that `word` was probably meant to be: it begins with the word, or differs in few letters (left out, put
// in, exchanged or swapped). Leading dashes do not count. Empty if no name is near.
std::string nearest(const std::string& word, const std::vector<std::string>& candidates);

// What is wrong with the command line that `app` could not parse, and a suggestion.
std::string usageText(const CLI::App& app, const CLI::ParseError& error);

// "tovrdb coef get --help shows its options". `command` is "coef get"; empty for the program itself.
std::string helpHint(const std::string& command);

// The words of the command that the command line named so far: "coef get".
std::string namedCommand(const CLI::App& app);

}  // namespace tovrdb::tool
