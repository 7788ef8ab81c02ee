#include "tool/commands/CommandTree.h"

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

}  // namespace tovrdb::tool
