// Writes the whole content of a database as a folder of arrays and one manifest (ExportFormat.h).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NpyFile.h"
#include "client/disk/FileOutput.h"
#include "client/session/Session.h"

namespace tovrdb {

struct ExportReport {
  std::size_t payloadFiles = 0;
  std::vector<std::string> leftOut;  // what else the file holds, beside the nine tables: "index of_screens"
  std::vector<std::string> faults;   // rows on damaged pages, which are left out with the rows that refer to them
};

// The folder appears when it is complete, with one state of the file, whoever else writes to it; that of a damaged file
// can be of several. `mode` is for its files. Without `dtype` the arrays have the types that are kept with the blocks,
// else bytes. Throws Error when the folder exists and may not be replaced or holds anything that no export has
// written, when a cell is not a whole number of `dtype` values, and on any other failure.
ExportReport exportFolder(Session& session, const std::string& folder, Existing existing, unsigned int mode,
                          const std::optional<Dtype>& dtype);

}  // namespace tovrdb
