#include "tool/commands/DocCommands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "tool/manual/CommandTree.h"
#include "tool/manual/Completion.h"
#include "tool/manual/ManualPage.h"

namespace tovrtool {
namespace {

std::string completionFor(const std::string& shell, const std::vector<CommandPage>& pages) {
  if (shell == "bash") return bashCompletion(pages);
  return shell == "zsh" ? zshCompletion(pages) : fishCompletion(pages);
}

}  // namespace

void addDocCommands(CLI::App& app, Command& chosen) {
  CLI::App* manual = app.add_subcommand("manual", "The manual page, for man: tovrdb manual | man -l -");
  manual->callback([&app, &chosen] {
    chosen = {"manual", [&app](Context& context) { context.output.print(manualPage(commandPages(app))); }};
  });

  CLI::App* completion = app.add_subcommand("completion", "A shell's completion script");
  const auto shell = std::make_shared<std::string>();
  completion->add_option("SHELL", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
  completion->callback([&app, &chosen, shell] {
    chosen = {"completion",
              [&app, shell](Context& context) { context.output.print(completionFor(*shell, commandPages(app))); }};
  });
}

}  // namespace tovrtool
