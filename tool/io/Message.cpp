#include "tool/io/Message.h"

#include <cstdio>
#include <cstdlib>

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

const char* adviceOf(Remedy remedy) {
  switch (remedy) {
    case Remedy::kPatch:
      return "--patch puts the cells into the stored block";
    case Remedy::kReplace:
      return "--replace removes areas that lie wholly inside";
    case Remedy::kBeside:
      return "--beside stores in addition";
    case Remedy::kNewScreen:
      return "--new-screen adds such a screen";
    case Remedy::kForce:
      return "--force does it anyway";
    case Remedy::kWithAreas:
      return "--with-areas deletes them with it";
    case Remedy::kOverwrite:
      return "--force replaces it";
    case Remedy::kWait:
      return "try again, or wait longer with --wait SECONDS";
    case Remedy::kCheckFile:
      return "`tovrdb check` tells more";
    case Remedy::kRecoverFile:
      return "open the database once with its key, as tovrdb info does, which completes or undoes it, and try again";
    case Remedy::kExportAndImport:
      return "tovrdb export, correct it in the manifest, then tovrdb import";
    case Remedy::kCreateFile:
      return "`tovrdb create` makes a new one";
    case Remedy::kLocatePlugin:
      return "say where it is with --plugin or TOVRDB_PLUGIN";
    case Remedy::kListAreas:
      return "tovrdb coef list shows the areas";
    case Remedy::kListData:
      return "tovrdb data list shows the types";
    case Remedy::kListMeasurements:
      return "tovrdb measure list shows them";
    case Remedy::kStoreBlock:
      return "tovrdb coef put stores them";
    case Remedy::kAddScreen:
      return "add one with tovrdb screen add";
    case Remedy::kMoveData:
      return "read it with tovrdb data get, delete it with tovrdb data delete, and put it back afterwards";
    case Remedy::kGiveTypeOrArea:
      return "--type or --area is required";
    case Remedy::kGiveRectOrScreen:
      return "choose one with --rect or --screen";
    case Remedy::kGiveScreen:
      return "say which with --screen";
    case Remedy::kOmitScreen:
      return "leave out --screen";
    case Remedy::kGiveAreaIds:
      return "say which with --id";
    case Remedy::kReadAcross:
      return "read across them with --mosaic";
    case Remedy::kReadApart:
      return "read them apart, with --area";
    case Remedy::kFill:
      return "--fill gives the number for such cells";
    case Remedy::kGiveNumberType:
      return "say it with --dtype";
    case Remedy::kGiveNumberForm:
      return "say how to read them with --dtype, --scale and --unit";
    case Remedy::kOtherNumberType:
      return "choose another --dtype or leave it out";
    case Remedy::kReadRaw:
      return "give raw bytes with --raw";
  }
  return "";
}

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
  for (const Remedy remedy : error.remedies()) text += std::string("; ") + adviceOf(remedy);
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
