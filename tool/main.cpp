// tovrdb: the command line of the database plug-in. Reads the command line, runs the command that it names and turns
// its outcome into an exit code.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <new>
#include <sstream>
#include <string>

#include "client/base/Error.h"
#include "client/base/Interrupt.h"
#include "client/disk/DatabaseFiles.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/UsageText.h"
#include "tool/io/Message.h"
#include "tool/io/Terminal.h"

namespace {

using namespace tovrdb;
using namespace tovrdb::tool;

constexpr const char* kIntroduction =
    R"(tovrdb keeps calibration data of LED screens in encrypted database files.

Examples:
  export TOVRDB_KEY='a key of your own'
  tovrdb create wall.db --type 0
  tovrdb screen add wall.db --name left --rect 0,0,1919,1079
  tovrdb sample -o wall.npy --size 1920x1080
  tovrdb coef put wall.db --type 1 --at 0,0 wall.npy
  tovrdb coef get wall.db --type 1 --rect 100,100,163,131 --dtype uint16 -o part.npy
  tovrdb coef list wall.db

Rectangles are L,T,R,B in cells from 0; both edges belong to them.
tovrdb COMMAND --help tells more about a command.
)";

constexpr const char* kFooter =
    R"(Environment: TOVRDB_KEY (the key), TOVRDB_PLUGIN (the plug-in library).
Exit codes, of every command (diff and check add what their result means):
  0    done
  1    the library refused: what was asked for is not stored, or the engine failed
  2    the command line is wrong
  3    a file is missing, exists already, cannot be read or written, or holds something else
  4    no key, or a key that does not open the file
  5    the plug-in library cannot be loaded
  6    another program is using the file, or changed it meanwhile: try again
  7    the command conflicts with stored data; nothing was written
  8    the database file, or data in it, is damaged
  9    the disk is full, or a quota or size limit is reached
  130  interrupted (Ctrl-C); 143 and 129: ended by SIGTERM or SIGHUP; nothing unfinished is left
  141  the reader of the output ended first, as head does; no message)";

constexpr int kLongestWait = 86400;

void addGlobalOptions(CLI::App& app, GlobalOptions& options) {
  app.add_option("--plugin", options.access.plugin, "The plug-in library [found beside the program]")
      ->type_name("FILE");
  app.add_option("--key-file", options.keyFile, "The key is this file's first line [TOVRDB_KEY, else a prompt]")
      ->type_name("FILE");
  CLI::Option* log = app.add_option("--log", options.log, "Append the library's own lines to this file");
  log->type_name("FILE");
  app.add_flag("--verbose", options.verbose, "Show the library's own lines on standard error")->excludes(log);
  app.add_option("--wait", options.access.patience, "How long other programs that use the file are waited for [5]")
      ->type_name("SECONDS")
      ->check(atMost(kLongestWait));
  app.add_flag_callback(
      "--fast", [&options] { options.access.flushed = false; },
      "Do not wait for the disk; a power cut can then damage the file");
  app.add_flag("-q,--quiet", options.quiet, "No messages but those of failures, and no progress bar");
}

int runChosen(const GlobalOptions& options, const Command& chosen, StandardOutput& output) {
  if (!options.log.empty()) {
    requireNoCompanion(options.log);
    output.logLibraryTo(options.log);
  }
  if (options.verbose) output.showLibrary();
  if (options.quiet) silenceMessages();
  Context context{options, output};
  chosen.run(context);
  output.finish();
  return context.code;
}

// Runs `action` on behalf of a command. Returns its exit code; a failure is printed.
template <class Action>
int report(const Command& command, Action action) {
  const auto failed = [&command](ErrorKind kind, const std::string& text) {
    complain(command.what.empty() ? text : fmt::format("{}: {}", command.what, text));
    if (kind == kInvalid) complain(helpHint(command.words));
    return static_cast<int>(exitCodeOf(kind));
  };
  try {
    return action();
  } catch (const Error& error) {
    if (error.kind() == kPipeClosed) return static_cast<int>(ExitCode::kPipeClosed);
    for (const std::string& detail : error.details()) complain(detail);
    return failed(error.kind(), messageOf(error));
  } catch (const std::bad_alloc&) {
    return failed(kRefused, "out of memory");
  } catch (const std::exception& error) {
    return failed(kRefused, error.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  ignoreBrokenPipes();
  handleInterrupts();
  ProgressBar bar;
  setListener(&bar);
  StandardOutput output;
  GlobalOptions options;
  Command chosen;
  CLI::App app(kIntroduction, "tovrdb");
  app.footer(kFooter);
  app.set_version_flag("--version", "tovrdb " TOVRDB_VERSION);
  app.require_subcommand(1)->fallthrough();
  addGlobalOptions(app, options);
  addAllCommands({app, chosen});
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // --help, --version
    std::ostringstream text;
    app.exit(request, text, text);
    return report({}, [&] {
      output.print(text.str());
      output.finish();
      return static_cast<int>(ExitCode::kDone);
    });
  } catch (const CLI::ParseError& error) {
    complain(usageText(app, error));
    complain(helpHint(namedCommand(app)));
    return static_cast<int>(ExitCode::kUsage);
  }
  return report(chosen, [&] { return runChosen(options, chosen, output); });
}
