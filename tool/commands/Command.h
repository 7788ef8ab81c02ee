// What commands share: their context, opening a database, asking before data is deleted; and how they are added to the
// command line.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "client/session/Session.h"
#include "tool/io/StandardOutput.h"
namespace tovrdb::tool {

struct GlobalOptions {
  Access access;
  std::string keyFile;
  std::string log;
  bool verbose = false;
  bool quiet = false;  // only messages of failures, no progress bar
};

struct Context {
  const GlobalOptions& options;
  StandardOutput& output;
  int code = 0;  // the exit code of a command that has done its work; failures are thrown
};

// The command that the command line chose.
struct Command {
  std::string words;  // "coef get"
  std::string what;   // "coef get wall.db": begins its messages
  std::function<void(Context&)> run;
};

// The program's own command line, or a group of commands in it ("coef").
class CommandGroup {
 public:
  // `chosen` becomes the command that the command line names. Both outlive the group and its commands.
  CommandGroup(CLI::App& app, Command& chosen) : app_(app), chosen_(chosen) {}

  CLI::App& app() const { return app_; }

  CommandGroup addGroup(const std::string& name, const std::string& description) {
    return {*app_.add_subcommand(name, description)->require_subcommand(1), chosen_};
  }

  template <class Options>
  struct Added {
    CLI::App& command;
    Options& options;  // live as long as the command; filled by its command line
  };

  // A command that is `run` with its options. `subject`, a member of the options or a function of them, is the text by
  // which messages name what the command works on.
  template <class Options, class Subject>
  Added<Options> add(const std::string& name, const std::string& description, Subject subject,
                     void (*run)(Context&, const Options&)) {
    CLI::App* command = app_.add_subcommand(name, description);
    const auto options = std::make_shared<Options>();
    const std::string words = app_.get_parent() == nullptr ? name : app_.get_name() + " " + name;
    command->callback([&chosen = chosen_, options, words, subject, run] {
      const std::string named = std::invoke(subject, *options);
      chosen = {words, named.empty() ? words : words + " " + named,
                [options, run](Context& context) { run(context, *options); }};
    });
    return {*command, *options};
  }
  // The same for a command that works on nothing with a name.
  template <class Options>
  Added<Options> add(const std::string& name, const std::string& description, void (*run)(Context&, const Options&)) {
    return add(
        name, description, [](const Options&) { return std::string(); }, run);
  }

 private:
  CLI::App& app_;
  Command& chosen_;
};

// Opens a database file; the first asks for the key once the file is known to exist. Throw Error.
Session openDatabase(const Context& context, const std::string& path);
Session openDatabase(const Context& context, const std::string& path, const std::string& key);

// Throws Error if --log names the database file; nothing has been appended to it yet.
void requireOtherThanLog(const Context& context, const std::string& path);

// Shows what will be deleted and asks on a terminal, unless `forced`. Throws Error if the answer is no, and if nobody
// can be asked.
void confirmDeletion(const std::vector<std::string>& what, bool forced);

// --force
void addForcedDeletion(CLI::App& command, bool& force);

// Adds every command of Commands.h to the program.
void addAllCommands(CommandGroup program);

}  // namespace tovrdb::tool
