#include "client/session/LibraryError.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>

#include "host/StatusText.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

// SQLite's result codes that are not plain refusals.
struct EngineStatus {
  int status;
  ErrorKind kind;
  const char* words;   // the engine's own, by which a statement that runs others tells their failure
  const char* advice;  // after "nothing was changed"; null: this is not said, since a read says it too
  bool check = false;  // the checks of the file tell more
};

constexpr EngineStatus kEngineStatuses[] = {
    {1, kRefused, nullptr, "", true},
    {5, kBusy, "database is locked", nullptr},
    {6, kBusy, "database table is locked", nullptr},
    {7, kRefused, "out of memory", ": close other programs and try again"},
    {8, kFileProblem, "attempt to write a readonly database", ""},
    {10, kFileProblem, "disk I/O error", "", true},
    {11, kDamaged, "database disk image is malformed", nullptr},
    {13, kNoSpace, "database or disk is full", ": free some space on it and try again"},
    {14, kFileProblem, "unable to open database file", nullptr},
    {18, kRefused, "string or blob too big", ""},
    {19, kRefused, nullptr, ""},
};

template <class Predicate>
const EngineStatus* findStatus(const Predicate& suits) {
  const auto found = std::find_if(std::begin(kEngineStatuses), std::end(kEngineStatuses), suits);
  return found != std::end(kEngineStatuses) ? found : nullptr;
}

ErrorKind kindOf(int status) {
  if (status == tovr::kCipherFailed || status == tovr::kBlockTooSmall) return kDamaged;
  const auto* known = findStatus([&](const EngineStatus& each) { return each.status == status; });
  return known != nullptr ? known->kind : kRefused;
}

std::string engineText(const EngineStatus& known, const std::string& engineWords) {
  std::string text = tovrhost::statusText(known.status);
  if (!engineWords.empty() && (known.words == nullptr || engineWords != known.words)) text += " (" + engineWords + ")";
  if (known.advice != nullptr) text += std::string("; nothing was changed") + known.advice;
  return text;
}

}  // namespace

bool isBusy(int status) { return kindOf(status) == kBusy; }

Error libraryError(int code, const std::string& engineWords, const std::string& detail) {
  const auto* known = findStatus([&](const EngineStatus& each) {
    return code == 1 ? each.words != nullptr && engineWords == each.words : each.status == code;
  });
  if (known == nullptr && code == 1) known = &kEngineStatuses[0];
  const int status = known != nullptr ? known->status : code;
  if (isBusy(status)) {
    return Error(kBusy, "{}: another program is using the file", status).setStatus(status).suggest(Remedy::kWait);
  }
  std::string text = known != nullptr ? engineText(*known, engineWords) : tovrhost::statusText(status);
  if (known == nullptr && !engineWords.empty()) text += " (" + engineWords + ")";
  if (!detail.empty()) text += "; " + detail;
  Error error = statusError(status, fmt::format("{}: {}", status, text));
  if (known != nullptr && known->check) error.suggest(Remedy::kCheckFile);
  return error;
}

Error statusError(int status, const std::string& text) {
  Error error(kindOf(status), text);
  error.setStatus(status);
  return error;
}

}  // namespace tovrdb
