#include "tool/database/LibraryError.h"

#include <fmt/core.h>

#include "host/StatusText.h"

namespace tovrtool {
namespace {

constexpr int kBusyStatus = 5;
constexpr int kLockedStatus = 6;

}  // namespace

bool isBusy(int status) { return status == kBusyStatus || status == kLockedStatus; }

ToolError libraryError(int status, const std::string& engineWords, const std::string& detail) {
  std::string text = fmt::format("{}: {}", status, tovrhost::statusText(status));
  if (!engineWords.empty()) text += " (" + engineWords + ")";
  if (!detail.empty()) text += "; " + detail;
  ToolError error(kRefused, text);
  if (isBusy(status)) {
    error = ToolError(kBusy, "{}: another program is using the file; try again, or wait longer with --wait SECONDS",
                      status);
  }
  error.setStatus(status);
  return error;
}

ToolError statusError(int status, const std::string& text) {
  ToolError error(kRefused, text);
  error.setStatus(status);
  return error;
}

}  // namespace tovrtool
