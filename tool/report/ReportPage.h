// A report as one self-contained page, and the parts of it that work without scripts.
#pragma once

#include <string>

#include "tool/report/ReportContent.h"

namespace tovrdb::tool {

// HTML in UTF-8 with style, script and data inside. The page's own policy keeps browsers from fetching anything and
// from running any other script.
std::string reportPage(const ReportContent& content);

// Verdict, screens with their map, areas, what changed, and a section for every set.
std::string bodyHtml(const ReportContent& content);

// The screens to scale, as a drawing (SVG): in their places, or side by side if they overlap. Each leads to its first
// set, each area, unless there are too many, to its place in the set's picture.
std::string mapHtml(const ReportContent& content);

// The text as a page shows it, between tags and in quoted attributes: a name with markup in it stays text.
std::string htmlText(const std::string& text);

}  // namespace tovrdb::tool
