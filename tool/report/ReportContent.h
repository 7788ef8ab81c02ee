// Everything that a report says, gathered from the files, before it becomes a page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/checks/Check.h"
#include "client/checks/FileDifference.h"
#include "client/checks/FileFacts.h"
#include "tool/report/ReportCells.h"
#include "tool/report/ReportDifference.h"

namespace tovrdb::tool {

// The data of one set, and what its text says beside it.
struct ReportSet {
  CellSet set;
  Json values;      // a layer; null where no block of it could be read
  Json difference;  // null without an older file, and where nothing changed
  std::int64_t changedCells = 0;
};

struct ReportContent {
  std::string file;
  std::string against;       // the older file; empty: none
  std::string againstFault;  // why there is no comparison with it; empty: there is
  std::string made;          // when
  FileFacts facts;
  std::vector<Verdict> verdicts;
  std::vector<ReportArea> areas;
  std::vector<ReportSet> sets;
  std::vector<Difference> differences;
  std::optional<CellPair> cabinet;
  std::int64_t block = 1;  // cells of a side that the pictures show as one
};

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
