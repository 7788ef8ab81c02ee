#include "tool/io/Message.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "tool/io/Terminal.h"

namespace tovrdb::tool {
namespace {

bool silent = false;

constexpr std::uint64_t kLittleWork = std::uint64_t{1} << 21;  // bytes; no bar is shown below this size
constexpr std::size_t kBarWidth = 32;
constexpr std::chrono::milliseconds kRedraw{100};

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool barWanted() {
  const char* terminal = std::getenv("TERM");
  const bool dumb = terminal != nullptr && std::string(terminal) == "dumb";
  return !silent && !isSet("NO_COLOR") && !dumb && isTerminal(kStandardError);
}

void draw(const std::string& task, double part) {
  const auto full = static_cast<std::size_t>(part * static_cast<double>(kBarWidth));
  const std::string bar = std::string(full, '#') + std::string(kBarWidth - full, '.');
  std::fprintf(stderr, "\r%s [%s] %3d%%\x1b[K", printable(task).c_str(), bar.c_str(), static_cast<int>(part * 100));
  std::fflush(stderr);
}

struct Advice {
  Remedy remedy;
  const char* text;
};

// In the order of the enumeration.
constexpr Advice kAdvice[] = {
    {Remedy::kPatch, "--patch puts the cells into the stored block"},
    {Remedy::kReplace, "--replace removes areas that lie wholly inside"},
    {Remedy::kBeside, "--beside stores in addition"},
    {Remedy::kNewScreen, "--new-screen adds such a screen"},
    {Remedy::kForce, "--force does it anyway"},
    {Remedy::kWithAreas, "--with-areas deletes them with it"},
    {Remedy::kOverwrite, "--force replaces it"},
    {Remedy::kWait, "try again, or wait longer with --wait SECONDS"},
    {Remedy::kCheckFile, "`tovrdb check` tells more"},
    {Remedy::kRecoverFile,
     "open the database once with its key, as tovrdb info does, which completes or undoes it, and try again"},
    {Remedy::kExportAndImport, "tovrdb export, correct it in the manifest, then tovrdb import"},
    {Remedy::kCreateFile, "`tovrdb create` makes a new one"},
    {Remedy::kLocatePlugin, "say where it is with --plugin or TOVRDB_PLUGIN"},
    {Remedy::kListAreas, "tovrdb coef list shows the areas"},
    {Remedy::kListData, "tovrdb data list shows the types"},
    {Remedy::kListMeasurements, "tovrdb measure list shows them"},
    {Remedy::kStoreBlock, "tovrdb coef put stores them"},
    {Remedy::kAddScreen, "add one with tovrdb screen add"},
    {Remedy::kMoveData, "read it with tovrdb data get, delete it with tovrdb data delete, and put it back afterwards"},
    {Remedy::kGiveTypeOrArea, "--type or --area is required"},
    {Remedy::kGiveRectOrScreen, "choose one with --rect or --screen"},
    {Remedy::kGiveScreen, "say which with --screen"},
    {Remedy::kOmitScreen, "leave out --screen"},
    {Remedy::kGiveAreaIds, "say which with --id"},
    {Remedy::kReadAcross, "read across them with --mosaic"},
    {Remedy::kReadApart, "read them apart, with --area"},
    {Remedy::kFill, "--fill gives the number for such cells"},
    {Remedy::kGiveNumberType, "say it with --dtype"},
    {Remedy::kGiveNumberForm, "say how to read them with --dtype, --scale and --unit"},
    {Remedy::kOtherNumberType, "choose another --dtype or leave it out"},
    {Remedy::kReadRaw, "give raw bytes with --raw"},
};

constexpr bool isComplete() {
  constexpr std::size_t kRemedies = static_cast<std::size_t>(Remedy::kReadRaw) + 1;
  if (std::size(kAdvice) != kRemedies) return false;
  for (std::size_t i = 0; i < kRemedies; ++i) {
    if (kAdvice[i].remedy != static_cast<Remedy>(i)) return false;
  }
  return true;
}
static_assert(isComplete(), "every remedy has its advice");

}  // namespace

void message(const std::string& text) {
  if (!silent) complain(text);
}

void silenceMessages() { silent = true; }

void complain(const std::string& text) { std::fprintf(stderr, "tovrdb: %s\n", printable(text).c_str()); }

ExitCode exitCodeOf(ErrorKind kind) {
  switch (kind) {
    case kRefused:
      return ExitCode::kRefused;
    case kInvalid:
      return ExitCode::kUsage;
    case kFileProblem:
      return ExitCode::kFileProblem;
    case kKeyProblem:
      return ExitCode::kKeyProblem;
    case kPluginProblem:
      return ExitCode::kPluginProblem;
    case kBusy:
      return ExitCode::kBusy;
    case kConflict:
      return ExitCode::kConflict;
    case kDamaged:
      return ExitCode::kDamaged;
    case kNoSpace:
      return ExitCode::kNoSpace;
    case kHungUp:
      return ExitCode::kHungUp;
    case kInterrupted:
      return ExitCode::kInterrupted;
    case kTerminated:
      return ExitCode::kTerminated;
    case kPipeClosed:
      return ExitCode::kPipeClosed;
  }
  return ExitCode::kRefused;
}

std::string messageOf(const Error& error) {
  std::string text = error.what();
  for (const Remedy remedy : error.remedies())
    text += std::string("; ") + kAdvice[static_cast<std::size_t>(remedy)].text;
  return text;
}

void ProgressBar::onWait(unsigned int seconds) {
  if (isTerminal(kStandardError)) message("another program is using the file; waiting for it, {} s at most", seconds);
}

void ProgressBar::onNote(const std::string& text) { message("note: {}", text); }

void ProgressBar::onProgress(const std::string& task, std::uint64_t done, std::uint64_t total) {
  if (done == 0) shown_ = total >= kLittleWork && barWanted();
  if (!shown_ || (done != 0 && done != total && Clock::now() < next_)) return;
  draw(task, static_cast<double>(done) / static_cast<double>(total));
  next_ = Clock::now() + kRedraw;
}

void ProgressBar::onProgressEnd() {
  if (shown_) std::fputs("\r\x1b[K", stderr);
  shown_ = false;
}

}  // namespace tovrdb::tool
