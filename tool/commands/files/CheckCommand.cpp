#include <algorithm>

#include "client/base/Error.h"
#include "client/base/Json.h"
#include "client/checks/Check.h"
#include "client/checks/JsonForms.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  bool json = false;
};

constexpr std::size_t kMostShown = 8;  // findings of one check, in text
const std::string kIndent(8, ' ');

const char* wordOf(Soundness soundness) {
  constexpr const char* kWords[] = {"ok      ", "warning ", "failed  "};
  return kWords[static_cast<int>(soundness)];
}

std::string asText(const std::vector<Verdict>& verdicts) {
  std::string text;
  for (const Verdict& verdict : verdicts) {
    text += wordOf(soundnessOf(verdict)) + verdict.name + (verdict.detail.empty() ? "" : ": " + verdict.detail) + "\n";
    const char* const aside = verdict.ok() ? "" : "warning: ";
    for (const std::string& line : verdict.faults.first(kMostShown)) text += kIndent + printable(line) + "\n";
    for (const std::string& line : verdict.warnings.first(kMostShown)) text += kIndent + aside + printable(line) + "\n";
  }
  return text;
}

std::string asJson(const std::string& file, const std::vector<Verdict>& verdicts) {
  const bool ok = soundnessOf(verdicts) != Soundness::kFault;
  return jsonText({{"file", file}, {"ok", ok}, {"checks", checksJson(verdicts)}});
}

void print(Context& context, const Options& options, const std::vector<Verdict>& verdicts) {
  context.output.print(options.json ? asJson(options.file, verdicts) : asText(verdicts));
}

bool isAboutFile(const Error& error) {
  return !isNoFault(error) && error.kind() != kInvalid && error.kind() != kPluginProblem;
}

// Opens the file. If that fails, prints the reason as a verdict.
Session open(Context& context, const Options& options, const std::string& key) {
  try {
    return openDatabase(context, options.file, key);
  } catch (const Error& error) {
    if (!isAboutFile(error)) throw;
    Verdict verdict;
    verdict.name = "opens with this key";
    verdict.faults.add(error.what());
    print(context, options, {verdict});
    context.output.finish();
    throw Error(error.kind(), "it cannot be opened; the verdict tells why");
  }
}

void check(Context& context, const Options& options) {
  const std::string key = readKey(context.options.keyFile, KeyUse::kOpen);
  const auto schema = expectedSchema(context.options.access.plugin);
  Session session = open(context, options, key);
  std::vector<Verdict> verdicts(1);
  verdicts[0].name = "opens with this key";
  {
    Progress progress("check", bytesToCheck(session));
    for (Verdict& verdict : checkDatabase(session, schema, progress)) verdicts.push_back(std::move(verdict));
  }
  print(context, options, verdicts);
  const auto failed =
      std::count_if(verdicts.begin(), verdicts.end(), [](const auto& verdict) { return !verdict.ok(); });
  if (failed == 0) return;
  context.output.finish();
  throw Error(kDamaged,
              "{} of {} checks failed. Restore what they name from a sound copy, and keep this file: all else in it "
              "may be newer than the copy",
              failed, verdicts.size());
}

}  // namespace

void addCheckCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("check", "Tell whether a database file is sound; reads all that it holds", &Options::file, check);
  command.footer(
      R"(Exit codes: 0 the file is sound, also with warnings; 8 a check failed or the file is damaged; 3 it is not a
database; 4 the key does not open it. Warnings are about what is unusual but was stored on request, such as
areas that overlap: nothing is lost.)");
  addFile(command, options.file);
  addJsonFlag(command, options.json);
}

}  // namespace tovrdb::tool
