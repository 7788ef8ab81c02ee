#include <fmt/core.h>

#include <algorithm>
#include <optional>

#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/DatabaseChecks.h"
#include "tool/database/FileDiagnosis.h"
#include "tool/database/JsonForms.h"
#include "tool/io/JsonText.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  bool json = false;
};

constexpr std::size_t kMostShown = 8;  // faults of one check, in text

std::string asText(const std::vector<Verdict>& verdicts) {
  std::string text;
  for (const Verdict& verdict : verdicts) {
    text += (verdict.ok() ? "ok      " : "failed  ") + verdict.name +
            (verdict.detail.empty() ? "" : ": " + verdict.detail) + "\n";
    for (std::size_t i = 0; i < std::min(verdict.faults.size(), kMostShown); ++i) {
      text += "        " + printable(verdict.faults[i]) + "\n";
    }
    if (verdict.faults.size() > kMostShown) {
      text += fmt::format("        and {} more\n", verdict.faults.size() - kMostShown);
    }
  }
  return text;
}

bool isOk(const Verdict& verdict) { return verdict.ok(); }

std::string asJson(const std::string& file, const std::vector<Verdict>& verdicts) {
  const bool ok = std::all_of(verdicts.begin(), verdicts.end(), isOk);
  return jsonText({{"file", file}, {"ok", ok}, {"checks", checksJson(verdicts)}});
}

void print(Context& context, const Options& options, const std::vector<Verdict>& verdicts) {
  context.output.print(options.json ? asJson(options.file, verdicts) : asText(verdicts));
}

// The open file. What keeps it from opening is told as a verdict.
std::optional<Session> open(Context& context, const Options& options, const std::string& key) {
  try {
    return openDatabase(context, options.file, key);
  } catch (const ToolError& error) {
    ToolError reason = error;
    if (error.code() == kKeyProblem) {
      reason = diagnoseUnreadable(options.file, enginePageSize(context.options.access.plugin));
    } else if (error.code() == kRefused || error.code() == kDamaged) {
      const ToolError diagnosis = diagnoseDamaged(options.file, enginePageSize(context.options.access.plugin));
      reason = ToolError(diagnosis.code(), "{}; {}", error.what(), diagnosis.what());
    } else if (error.code() != kFileProblem) {
      throw;
    }
    Verdict verdict;
    verdict.name = "opens with this key";
    verdict.faults.emplace_back(reason.what());
    print(context, options, {verdict});
    context.output.finish();
    throw ToolError(reason.code(), "it cannot be opened; the verdict tells why");
  }
}

void check(Context& context, const Options& options) {
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  const auto schema = expectedSchema(context.options.access.plugin);
  auto session = open(context, options, key);
  std::vector<Verdict> verdicts(1);
  verdicts[0].name = "opens with this key";
  {
    Progress progress("check", bytesToCheck(*session));
    for (Verdict& verdict : checkDatabase(*session, schema, progress)) verdicts.push_back(std::move(verdict));
  }
  print(context, options, verdicts);
  const auto failed =
      static_cast<std::ptrdiff_t>(verdicts.size()) - std::count_if(verdicts.begin(), verdicts.end(), isOk);
  if (failed == 0) return;
  context.output.finish();
  throw ToolError(kDamaged, "{} of {} checks failed; if a copy is whole, restore it", failed, verdicts.size());
}

}  // namespace

void addCheckCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("check", "Tell whether a database file is whole; reads every byte of it", &Options::file, check);
  command.footer(
      "Exit codes: 0 all is well, 8 a check failed or the file is damaged, 3 it is not a database, 4 the key does not\n"
      "open it.");
  addFile(command, options.file);
  addJsonFlag(command, options.json);
}

}  // namespace tovrtool
