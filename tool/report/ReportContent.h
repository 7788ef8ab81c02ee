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

// The data of one set, and the text beside it.
struct ReportSet {
  CellSet set;
  Json values;      // a layer; null if no block of it could be read
  Json difference;  // null without an older file, or if nothing changed
  std::int64_t changedCells = 0;
};

struct ReportContent {
  std::string file;
  std::string against;       // the older file; empty if there is none
  std::string againstFault;  // why the two cannot be compared; empty if they were
  std::string made;          // when
  FileFacts facts;
  std::vector<Verdict> verdicts;
  std::vector<ReportArea> areas;
  std::vector<ReportSet> sets;
  std::vector<Difference> differences;
  std::optional<CellPair> cabinet;
  std::int64_t block = 1;  // the pictures show block x block cells as one
};

struct ReportQuestion {
  FileAndKey file;
  std::optional<FileAndKey> against;  // the older one
  FormOptions form;
  std::optional<CellPair> cabinet;
};

// Reads every byte of the file. The content describes damage; throws Error if the file cannot be opened, if the older
// one cannot be compared for a reason other than damage, or if there would be too many cabinets.
ReportContent buildReport(const Access& access, const ReportQuestion& question);

}  // namespace tovrdb::tool
