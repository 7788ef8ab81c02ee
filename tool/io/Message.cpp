#include "tool/io/Message.h"

#include <cstdio>

namespace tovrdb::tool {
namespace {

bool silent = false;

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

bool messagesAreSilent() { return silent; }

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

}  // namespace tovrdb::tool
