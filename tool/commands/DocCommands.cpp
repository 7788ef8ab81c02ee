#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/commands/CommandTree.h"
#include "tool/commands/Commands.h"
#include "tool/commands/Completion.h"
#include "tool/commands/JsonForms.h"
#include "tool/commands/ManualPage.h"

namespace tovrtool {
namespace {

struct Options {
  const CLI::App* program = nullptr;
  std::string shell;
};

void manual(Context& context, const Options& options) {
  context.output.print(manualPage(commandPages(*options.program), kJsonManual));
}

void completion(Context& context, const Options& options) {
  const auto pages = commandPages(*options.program);
  const auto script = options.shell == "bash"  ? bashCompletion
                      : options.shell == "zsh" ? zshCompletion
                                               : fishCompletion;
  context.output.print(script(pages));
}

}  // namespace

void addDocCommands(CommandGroup& program) {
  program.add("manual", "The manual page, for man: tovrdb manual | man -l -", manual).options.program = &program.app();

  const auto [command, options] = program.add("completion", "A shell's completion script", completion);
  options.program = &program.app();
  command.add_option("SHELL", options.shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

}  // namespace tovrtool
