// A command of a group that works on one database file: "data put FILE".
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "tool/commands/Arguments.h"
#include "tool/system/Command.h"

namespace tovrtool {

// Adds `name` to `group`; when it is chosen, `run` gets the options, which hold the file's path as `file`.
template <class Options>
CLI::App* addFileCommand(CLI::App& group, Command& chosen, const std::shared_ptr<Options>& options,
                         const std::string& name, const std::string& description,
                         void (*run)(Context&, const Options&)) {
  CLI::App* command = group.add_subcommand(name, description);
  addFile(*command, options->file);
  command->callback([&chosen, options, what = group.get_name() + " " + name, run] {
    chosen = {what + " " + options->file, [options, run](Context& context) { run(context, *options); }};
  });
  return command;
}

}  // namespace tovrtool
