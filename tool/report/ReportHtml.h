// The parts of a report's page that are there without scripts.
#pragma once

#include <string>

#include "tool/report/ReportContent.h"

namespace tovrdb::tool {

// The text as a page shows it, between tags and in quoted attributes: a name with markup in it stays text.
std::string htmlText(const std::string& text);

// Verdict, screens with their map, areas, what changed, and a section for every set.
std::string bodyHtml(const ReportContent& content);

}  // namespace tovrdb::tool
