#include "tool/database/LibraryError.h"

#include <fmt/core.h>

#include "host/StatusText.h"

namespace tovrtool {

ToolError libraryError(int status, const std::string& engineWords, const std::string& detail) {
  std::string text = fmt::format("{}: {}", status, tovrhost::statusText(status));
  if (!engineWords.empty()) text += " (" + engineWords + ")";
  if (!detail.empty()) text += "; " + detail;
  ToolError error(kRefused, text);
  error.setStatus(status);
  return error;
}

}  // namespace tovrtool
