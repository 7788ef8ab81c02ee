#include "client/session/Damage.h"

#include <fmt/core.h>

#include <array>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

constexpr std::array<const char*, 6> kScreenNumbers = {"id", "dbid", "left", "top", "right", "bottom"};

// Whether the library can parse a number at the beginning of the text.
bool isNumber(const std::string& text) {
  char* end = nullptr;
  const long long value = std::strtoll(text.c_str(), &end, 10);
  using Limits = std::numeric_limits<std::int32_t>;
  return end != text.c_str() && value >= Limits::min() && value <= Limits::max();
}

[[noreturn]] void refuseScreens(Session& session, const std::string& reason) {
  for (const Row& row :
       queryRows(session.connection(), "select id, dbid, left, top, right, bottom from Screen_Info order by id")) {
    for (std::size_t i = 0; i < kScreenNumbers.size(); ++i) {
      if (isNumber(row[i])) continue;
      throw statusError(tovr::kCipherFailed,
                        fmt::format("row {} of Screen_Info is damaged: its column {} holds '{}', which is not a whole "
                                    "number of 32 bits",
                                    row[0], kScreenNumbers[i], row[i]))
          .suggest(Remedy::kExportAndImport);
    }
  }
  throw statusError(tovr::kCipherFailed, "the file is damaged: the library cannot read its rows (" + reason + ")");
}

}  // namespace

bool isDamage(const Error& error) {
  const int status = error.status();
  return status == tovr::kCipherFailed || status == tovr::kBlockTooSmall || status == kErrorStatus ||
         status == kReadFailedStatus || status == kMalformedStatus || status == kNotADatabaseStatus;
}

bool isNoFault(const Error& error) { return isEnded(error.kind()) || error.kind() == kBusy; }

void beginAgain(Session& session) {
  session.connection().exec("rollback");  // fails if there is no transaction
  session.beginReading();
}

void refuseDamaged(const std::string& subject, const std::string& fault) {
  throw statusError(tovr::kCipherFailed,
                    fmt::format("{} is damaged: {}; what else the file holds can be read", subject, fault));
}

int queryLibrary(Session& session, tovr::DataBase& record) {
  try {
    return session.manager().queryData(&record);
  } catch (const std::logic_error& error) {
    refuseScreens(session, error.what());
  }
}

}  // namespace tovrdb
