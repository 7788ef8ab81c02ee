#include "client/base/Error.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace tovrdb {
namespace {

struct RemedyName {
  Remedy remedy;
  const char* name;
};

// In the order of the enumeration.
constexpr RemedyName kRemedyNames[] = {
    {Remedy::kPatch, "patch"},
    {Remedy::kReplace, "replace"},
    {Remedy::kBeside, "beside"},
    {Remedy::kNewScreen, "new screen"},
    {Remedy::kForce, "force"},
    {Remedy::kWithAreas, "with areas"},
    {Remedy::kOverwrite, "overwrite"},
    {Remedy::kWait, "wait"},
    {Remedy::kCheckFile, "check file"},
    {Remedy::kRecoverFile, "recover file"},
    {Remedy::kExportAndImport, "export and import"},
    {Remedy::kCreateFile, "create file"},
    {Remedy::kLocatePlugin, "locate plug-in"},
    {Remedy::kListAreas, "list areas"},
    {Remedy::kListData, "list data"},
    {Remedy::kListMeasurements, "list measurements"},
    {Remedy::kStoreBlock, "store block"},
    {Remedy::kAddScreen, "add screen"},
    {Remedy::kMoveData, "move data"},
    {Remedy::kGiveTypeOrArea, "give type or area"},
    {Remedy::kGiveRectOrScreen, "give rect or screen"},
    {Remedy::kGiveScreen, "give screen"},
    {Remedy::kOmitScreen, "omit screen"},
    {Remedy::kGiveAreaIds, "give area ids"},
    {Remedy::kReadAcross, "read across"},
    {Remedy::kReadApart, "read apart"},
    {Remedy::kFill, "fill"},
    {Remedy::kGiveNumberType, "give number type"},
    {Remedy::kGiveNumberForm, "give number form"},
    {Remedy::kOtherNumberType, "other number type"},
    {Remedy::kReadRaw, "read raw"},
};

constexpr bool isComplete() {
  constexpr std::size_t kRemedies = static_cast<std::size_t>(Remedy::kReadRaw) + 1;
  if (std::size(kRemedyNames) != kRemedies) return false;
  for (std::size_t i = 0; i < kRemedies; ++i) {
    if (kRemedyNames[i].remedy != static_cast<Remedy>(i)) return false;
  }
  return true;
}
static_assert(isComplete(), "every remedy has its name");

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

const char* nameOf(Remedy remedy) { return kRemedyNames[static_cast<std::size_t>(remedy)].name; }

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
