#include "client/base/Error.h"

#include <algorithm>

namespace tovrdb {
namespace {

// An error that cannot be forced takes precedence over a conflict.
ErrorKind kindOf(const std::vector<Objection>& objections) {
  for (const ErrorKind kind : {kDamaged, kRefused, kInvalid}) {
    const auto hasIt = [&](const Objection& objection) { return objection.kind == kind; };
    if (std::any_of(objections.begin(), objections.end(), hasIt)) return kind;
  }
  return kConflict;
}

// In the order of the enumeration, each once.
void suggestAll(Error& error, const std::vector<Objection>& objections) {
  std::vector<Remedy> remedies;
  for (const Objection& objection : objections) {
    remedies.insert(remedies.end(), objection.remedies.begin(), objection.remedies.end());
  }
  std::sort(remedies.begin(), remedies.end());
  remedies.erase(std::unique(remedies.begin(), remedies.end()), remedies.end());
  for (const Remedy remedy : remedies) error.suggest(remedy);
}

}  // namespace

Error& Error::setStatus(int status) {
  status_ = status;
  return *this;
}

Error& Error::setSubject(Subject subject) {
  subject_ = std::move(subject);
  return *this;
}

Error& Error::suggest(Remedy remedy) {
  remedies_.push_back(remedy);
  return *this;
}

Error& Error::setDetails(std::vector<std::string> details) {
  details_ = std::move(details);
  return *this;
}

Error Error::about(const std::string& thing) const {
  Error told = *this;
  static_cast<std::runtime_error&>(told) = std::runtime_error(thing + ": " + what());
  return told;
}

const char* nameOf(ErrorKind kind) {
  switch (kind) {
    case kRefused:
      return "refused";
    case kInvalid:
      return "invalid";
    case kFileProblem:
      return "file problem";
    case kKeyProblem:
      return "key problem";
    case kPluginProblem:
      return "plug-in problem";
    case kBusy:
      return "busy";
    case kConflict:
      return "conflict";
    case kDamaged:
      return "damaged";
    case kNoSpace:
      return "no space";
    case kHungUp:
      return "hung up";
    case kInterrupted:
      return "interrupted";
    case kTerminated:
      return "terminated";
    case kPipeClosed:
      return "pipe closed";
  }
  return "";
}

const char* nameOf(Remedy remedy) {
  switch (remedy) {
    case Remedy::kPatch:
      return "patch";
    case Remedy::kReplace:
      return "replace";
    case Remedy::kBeside:
      return "beside";
    case Remedy::kNewScreen:
      return "new screen";
    case Remedy::kForce:
      return "force";
    case Remedy::kWithAreas:
      return "with areas";
    case Remedy::kOverwrite:
      return "overwrite";
    case Remedy::kWait:
      return "wait";
    case Remedy::kCheckFile:
      return "check file";
    case Remedy::kRecoverFile:
      return "recover file";
    case Remedy::kExportAndImport:
      return "export and import";
    case Remedy::kListAreas:
      return "list areas";
    case Remedy::kListData:
      return "list data";
    case Remedy::kListMeasurements:
      return "list measurements";
    case Remedy::kStoreBlock:
      return "store block";
    case Remedy::kAddScreen:
      return "add screen";
    case Remedy::kMoveData:
      return "move data";
    case Remedy::kCreateFile:
      return "create file";
    case Remedy::kLocatePlugin:
      return "locate plug-in";
    case Remedy::kGiveTypeOrArea:
      return "give type or area";
    case Remedy::kGiveRectOrScreen:
      return "give rect or screen";
    case Remedy::kGiveScreen:
      return "give screen";
    case Remedy::kOmitScreen:
      return "omit screen";
    case Remedy::kGiveAreaIds:
      return "give area ids";
    case Remedy::kReadAcross:
      return "read across";
    case Remedy::kReadApart:
      return "read apart";
    case Remedy::kFill:
      return "fill";
    case Remedy::kGiveNumberType:
      return "give number type";
    case Remedy::kGiveNumberForm:
      return "give number form";
    case Remedy::kOtherNumberType:
      return "other number type";
    case Remedy::kReadRaw:
      return "read raw";
  }
  return "";
}

void requireNone(const std::vector<Objection>& objections, const std::string& outcome) {
  if (objections.empty()) return;
  if (objections.size() == 1) {
    Error error(kindOf(objections), objections[0].text + "; " + outcome);
    suggestAll(error, objections);
    throw error.setStatus(objections[0].status).setSubject(objections[0].subject);
  }
  std::vector<std::string> lines;
  for (const Objection& objection : objections) lines.push_back(objection.text);
  Error error(kindOf(objections), fmt::format("{} conflicts; {}", lines.size(), outcome));
  suggestAll(error, objections);
  throw error.setDetails(std::move(lines));
}

}  // namespace tovrdb
