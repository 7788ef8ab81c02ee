#include "tool/commands/UsageText.h"

#include <fmt/format.h>

#include <algorithm>

#include "tool/commands/Documentation.h"

namespace tovrdb::tool {
namespace {

// Edit distance in which neighbours that are swapped count once: "optimal string alignment".
std::size_t distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      std::size_t& least = cost[i][j];
      least = i == 0 || j == 0 ? i + j : cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      if (i > 0 && j > 0) least = std::min({least, cost[i - 1][j] + 1, cost[i][j - 1] + 1});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) least = std::min(least, cost[i - 2][j - 2] + 1);
    }
  }
  return cost[a.size()][b.size()];
}

std::string withoutDashes(const std::string& word) {
  return word.substr(std::min(word.find_first_not_of('-'), word.size()));
}

// The command that the command line has reached, and the program above it.
std::vector<const CLI::App*> reached(const CLI::App& app) {
  std::vector<const CLI::App*> groups{&app};
  while (!groups.back()->get_subcommands().empty()) groups.push_back(groups.back()->get_subcommands().front());
  return groups;
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& app) {
  std::vector<const CLI::Option*> options;
  for (const CLI::App* group : reached(app)) {
    for (const CLI::Option* option : group->get_options()) options.push_back(option);
  }
  return options;
}

std::string suggestion(const std::string& word, const std::vector<std::string>& candidates) {
  const std::string near = nearest(word, candidates);
  return near.empty() ? near : fmt::format("; did you mean {}?", near);
}

std::string unknownOption(const CLI::App& app, const std::string& given) {
  const std::string name = given.substr(0, given.find('='));
  std::vector<std::string> names;
  for (const CLI::Option* option : optionsOf(app)) {
    for (const std::string& known : option->get_lnames()) names.push_back("--" + known);
  }
  const std::string command = namedCommand(app);
  return fmt::format("{} has no option {}{}", command.empty() ? "tovrdb" : command, name, suggestion(name, names));
}

std::string aboutCommand(const CLI::App& app, const std::vector<std::string>& rest) {
  std::vector<std::string> names;
  for (const CLI::App* command : reached(app).back()->get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  const std::string group = namedCommand(app);
  const std::string all = fmt::format("{}", fmt::join(names, ", "));
  if (rest.empty()) return group.empty() ? "name a command: " + all : fmt::format("{} takes one of {}", group, all);
  if (rest.front()[0] == '-') return unknownOption(app, rest.front());
  const std::string near = suggestion(rest.front(), names);
  return fmt::format("there is no command {}{}{}{}", group, group.empty() ? "" : " ", rest.front(),
                     near.empty() ? "; there are " + all : near);
}

std::string aboutExtras(const CLI::App& app, const std::vector<std::string>& rest) {
  const auto option = std::find_if(rest.begin(), rest.end(), [](const std::string& word) {
    return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9');
  });
  if (option != rest.end()) return unknownOption(app, *option);
  std::vector<std::string> positionals;
  for (const CLI::Option* each : reached(app).back()->get_options()) {
    if (each->get_positional()) positionals.push_back(each->get_single_name());
  }
  return fmt::format("'{}' is one argument too many: {} takes {}", rest.empty() ? "" : rest.front(), namedCommand(app),
                     positionals.empty() ? "no arguments but options" : fmt::format("{}", fmt::join(positionals, " ")));
}

// The option that a message of the parser is about: the message begins with its name, some after a title.
const CLI::Option* optionIn(const CLI::App& app, const std::string& message) {
  const std::string title = "Could not convert: ";
  const std::string text = message.rfind(title, 0) == 0 ? message.substr(title.size()) : message;
  const std::string name = text.substr(0, text.find_first_of(": "));
  const auto options = optionsOf(app);
  const auto found =
      std::find_if(options.begin(), options.end(), [&](const CLI::Option* each) { return each->get_name() == name; });
  return found != options.end() ? *found : nullptr;
}

std::string aboutConversion(const CLI::Option& option, const std::string& value) {
  const std::string type = option.get_type_name();
  const bool whole = type == "INT" || type == "UINT" || type.rfind("ID", 0) == 0;
  const bool digits = !value.empty() && value.find_first_not_of("-0123456789") == std::string::npos;
  const char* kind = whole ? (digits ? "a smaller whole number" : "a whole number") : "a number";
  return fmt::format("{} takes {}; got '{}'", option.get_name(), kind, value);
}

std::string aboutCount(const CLI::Option& option) {
  const std::size_t times = option.results().size();
  if (times > 1) return fmt::format("{} is given {} times; give it once", option.get_name(), times);
  return fmt::format("{} takes a value: {}", option.get_name(), option.get_type_name());
}

std::string aboutValue(const CLI::Option& option, const CLI::ParseError& error) {
  const std::string value = option.results().empty() ? "" : option.results().front();
  const bool flag = option.get_items_expected_max() == 0;
  if (flag && option.results().size() <= 1) return option.get_name() + " takes no value";
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) return aboutConversion(option, value);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) return aboutCount(option);
  const std::vector<std::string> choices = choicesOf(option);
  if (!choices.empty()) {
    return fmt::format("{} takes one of {}; got '{}'", option.get_name(), fmt::join(choices, ", "), value);
  }
  std::string text = error.what();  // "--atol: must be at least 0"
  const std::size_t colon = text.find(": must ");
  if (colon == option.get_name().size()) text.erase(colon, 1);
  return text;
}

// "--rect excludes --at"
std::string aboutExclusion(std::string text) {
  const std::string verb = " excludes ";
  const std::size_t at = text.find(verb);
  if (at == std::string::npos) return text;
  return text.replace(at, verb.size(), " and ") + " exclude each other: give one of them";
}

template <class Kind>
bool is(const CLI::ParseError& error) {
  return dynamic_cast<const Kind*>(&error) != nullptr;
}

}  // namespace

std::string nearest(const std::string& word, const std::vector<std::string>& candidates) {
  constexpr std::size_t kLongest = 64;  // no option has so many letters, and the work grows with them
  const std::string meant = withoutDashes(word);
  if (meant.empty() || meant.size() > kLongest) return {};
  std::string found;
  std::size_t least = meant.size() / 3 + 2;  // one more than is near
  for (const std::string& candidate : candidates) {
    const std::string name = withoutDashes(candidate);
    const std::size_t away = name.rfind(meant, 0) == 0 ? 0 : distance(meant, name);
    if (away < least) {
      least = away;
      found = candidate;
    }
  }
  return found;
}

std::string namedCommand(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* group : reached(app)) names.push_back(group->get_name());
  names.erase(names.begin());
  return fmt::format("{}", fmt::join(names, " "));
}

std::string usageText(const CLI::App& app, const CLI::ParseError& error) {
  const auto rest = app.remaining(true);
  const bool group = !reached(app).back()->get_subcommands([](const CLI::App*) { return true; }).empty();
  if (is<CLI::RequiredError>(error) && group) return aboutCommand(app, rest);
  // An unknown word explains why another one is missing.
  if (is<CLI::ExtrasError>(error) || (is<CLI::RequiredError>(error) && !rest.empty())) return aboutExtras(app, rest);
  if (is<CLI::ExcludesError>(error)) return aboutExclusion(error.what());
  const CLI::Option* option = optionIn(app, error.what());
  const bool value =
      is<CLI::ConversionError>(error) || is<CLI::ArgumentMismatch>(error) || is<CLI::ValidationError>(error);
  return option != nullptr && value ? aboutValue(*option, error) : error.what();
}

std::string helpHint(const std::string& command) {
  return command.empty() ? "tovrdb --help shows commands and examples"
                         : fmt::format("tovrdb {} --help shows its usage", command);
}

}  // namespace tovrdb::tool
