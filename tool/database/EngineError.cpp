#include "tool/database/EngineError.h"

#include "host/StatusText.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr int kBusyCode = 5;
constexpr int kLockedCode = 6;
constexpr int kFirstOfOurOwn = 4096;

// Codes of the library's own say it all, and so does one that the connection knows nothing of.
std::string wordsOf(tovr::IDBOperate& connection, int code) {
  const char* words = code < kFirstOfOurOwn && connection.errCode() != 0 ? connection.errMsg() : nullptr;
  return words != nullptr && *words != '\0' ? std::string(" (") + words + ")" : "";
}

}  // namespace

bool isBusy(int code) { return code == kBusyCode || code == kLockedCode; }

void requireOk(tovr::IDBOperate& connection, int code, const std::string& where, const std::string& advice) {
  if (code == 0) return;
  const std::string begin = where.empty() ? "" : where + ": ";
  if (isBusy(code)) {
    throw ToolError(kBusy, begin + std::to_string(code) +
                               ": another program is using the file; try again, or wait longer with --wait SECONDS");
  }
  throw ToolError(kRefused, begin + std::to_string(code) + ": " + tovrhost::statusText(code) +
                                wordsOf(connection, code) + (advice.empty() ? "" : "; " + advice));
}

}  // namespace tovrtool
