// A report as one page that needs nothing else.
#pragma once

#include <string>

#include "tool/report/ReportContent.h"

namespace tovrdb::tool {

// HTML in UTF-8 with style, script and data inside. The page's own policy keeps browsers from fetching anything and
// from running any other script.
std::string reportPage(const ReportContent& content);

}  // namespace tovrdb::tool
