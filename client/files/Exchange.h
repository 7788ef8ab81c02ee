// The folder that `tovrdb export` writes and `tovrdb import` reads.
//
// kManifestName, a JSON object: "format" and "version" as below; "tables", an object with every table's rows; and
// "sequence", the last key that each table has issued. Of a damaged file also "faults", texts that name the rows that
// are left out; import does not read them. A payload is {"file": NAME, "form": FORM}:
//   "cells"    a .npy array, rows x columns x values of a cell, of the rectangle that the block's first area has
//   "payload"  the payload's bytes, where they are not such a rectangle of cells
//   "stored"   the enciphered bytes as they are stored, where deciphering them would lose something: damaged blobs
#pragma once

namespace tovrdb {

constexpr char kManifestName[] = "manifest.json";
constexpr char kExportFormat[] = "tovrdb export";
constexpr int kExportVersion = 1;

constexpr char kCellsForm[] = "cells";
constexpr char kPayloadForm[] = "payload";
constexpr char kStoredForm[] = "stored";

}  // namespace tovrdb
