// Database files as folders of arrays, and back, without loss.
//
// A folder holds the manifest, a JSON object, and one file per payload. Members of the manifest: "format" and
// "version", as below; "tables", an object with the rows of every table (StoredRows.h); and "sequence", the last key
// that each table has issued. The manifest of a damaged file also has "faults", texts that name the rows that were left
// out; import ignores them. A payload is {"file": NAME, "form": FORM}:
//   "cells"    a .npy array, rows x columns x values of a cell, of the rectangle of the block's first area
//   "payload"  the decrypted bytes of a payload that is not such a rectangle of cells
//   "stored"   the encrypted bytes as they are stored, if decrypting them would lose something: damaged blobs
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/cells/NumberType.h"
#include "client/disk/FileOutput.h"
#include "client/session/Session.h"

namespace tovrdb {

constexpr char kManifestName[] = "manifest.json";
constexpr char kExportFormat[] = "tovrdb export";
constexpr int kExportVersion = 1;

constexpr char kCellsForm[] = "cells";
constexpr char kPayloadForm[] = "payload";
constexpr char kStoredForm[] = "stored";

struct ExportReport {
  std::size_t payloadFiles = 0;
  std::vector<std::string> leftOut;  // what the file holds beside the nine tables: "index of_screens"
  std::vector<std::string> faults;   // rows on damaged pages, left out with the rows that refer to them
};

// Writes the folder, which appears when it is complete. It holds one state of the file, even if others write to it;
// that of a damaged file can hold several. `mode`: permissions of its files. Without `dtype` the arrays have the types
// that are kept with the blocks, else bytes. Throws Error if the folder exists and may not be replaced or holds
// anything that no export has written, if a cell is not a whole number of `dtype` values, and on any other failure.
ExportReport exportFolder(Session& session, const std::string& folder, Existing existing, unsigned int mode,
                          std::optional<NumberType> dtype);

// The manifest of a folder that anybody may have made. Throws Error unless it has this format and lists the rows of the
// nine tables.
Json readManifest(const std::string& folder);

// Makes the nine tables, and fills them with the rows of the manifest and the payloads of its folder. Throws Error; no
// row is stored then. REQUIRES: `manifest` is from readManifest, and the session's database is empty.
void importFolder(Session& session, const std::string& folder, const Json& manifest);

}  // namespace tovrdb
