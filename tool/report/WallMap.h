// The screens of a wall to scale, as a drawing (SVG) in a page.
#pragma once

#include <string>

#include "tool/report/ReportContent.h"

namespace tovrdb::tool {

// Screens in their places; those that lie on one another side by side. Each leads to its first set, each area, unless
// there are too many, to its place in the set's picture.
std::string mapHtml(const ReportContent& content);

}  // namespace tovrdb::tool
