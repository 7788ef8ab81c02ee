// Gathers what a report says from the files.
#pragma once

#include <optional>
#include <string>

#include "client/checks/FileDifference.h"
#include "tool/report/ReportContent.h"

namespace tovrdb::tool {

struct ReportQuestion {
  FileAndKey file;
  std::optional<FileAndKey> against;  // the older one
  FormOptions form;
  std::optional<CellPair> cabinet;
};

// Reads every byte of the file. Damage is told in the content; throws Error where the file does not open at all,
// where the older one cannot be compared with it, and for cabinets that are too many.
ReportContent buildReport(const Access& access, const ReportQuestion& question);

}  // namespace tovrdb::tool
