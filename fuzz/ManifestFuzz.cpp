// The importer of `tovrdb import`: a folder with any manifest and any payload. What it refuses leaves no row; what it
// takes is stored row for row, and payloads decipher to what their files held.
#include <algorithm>
#include <string>

#include "client/base/Error.h"
#include "client/cells/NpyFile.h"
#include "client/contents/StoredBlob.h"
#include "client/files/Exchange.h"
#include "client/files/StoredRows.h"
#include "client/session/SqlQuery.h"
#include "fuzz/Choices.h"
#include "fuzz/ScratchFolder.h"
#include "fuzz/Target.h"
#include "tool/io/StandardOutput.h"

namespace tovrfuzz {
namespace {

using tovrdb::Json;

constexpr char kRawKey[] = "x'000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F'";
constexpr char kPayload[] = "payload";

// The tool as `tovrdb import` runs it, with a database in memory.
struct Tool {
  tovrdb::tool::StandardOutput output;
  tovrdb::Session session = tovrdb::Session::openMemory(TOVR_PLUGIN_FILE);
};

Json wildValue(Choices& choices) {
  const Json values[] = {nullptr,
                         true,
                         -1,
                         1,
                         INT32_MAX,
                         INT64_MIN,
                         UINT64_MAX,
                         1e300,
                         "",
                         "%n",
                         "\xF0\x9F\x92\xA1",
                         std::string("a\0b", 3),
                         Json::array(),
                         Json::array({1}),
                         Json::object(),
                         {{"blob", "00ff"}},
                         {{"blob", "0"}},
                         {{"blob", ""}},
                         {{"text", "80"}},
                         {{"text", 1}},
                         {{"other", "00"}},
                         {{"file", kPayload}},
                         {{"file", kPayload}, {"form", "cells"}},
                         {{"file", "../outside"}, {"form", "stored"}},
                         {{"file", 1}, {"form", "payload"}}};
  return choices.oneOf(values);
}

Json payloadValue(Choices& choices) {
  const char* const forms[] = {tovrdb::kPayloadForm, tovrdb::kStoredForm, tovrdb::kCellsForm, "other"};
  const char* const names[] = {"missing", "", ".", "../outside"};
  const unsigned char choice = choices.byte();
  return {{"file", choice < 240 ? kPayload : choices.oneOf(names)}, {"form", forms[choice < 240 ? choice % 3 : 3]}};
}

// The array in the payload's file, where that is one.
struct Shape {
  explicit Shape(Choices& choices)
      : rows(1 + choices.below(4)), columns(1 + choices.below(4)), cellBytes(1 + choices.below(4)) {}
  std::size_t rows;
  std::size_t columns;
  std::size_t cellBytes;
};

// What an honest row has there, or anything.
Json value(const std::string& column, std::size_t key, const Shape& shape, Choices& choices) {
  const unsigned char choice = choices.byte();
  if (choice >= 253) return wildValue(choices);
  if (column == "id") return key;
  if (column == tovrdb::kPayloadColumn) return payloadValue(choices);
  if (column == "left" || column == "top") return 0;
  if (column == "right") return choice < 240 ? shape.columns - 1 : choice;
  if (column == "bottom") return choice < 240 ? shape.rows - 1 : choice;
  if (column == "databitwidth") return choice < 240 ? shape.cellBytes : choice;
  if (column.size() > 4 && column.compare(column.size() - 4, 4, "name") == 0) return "main";
  return 1;
}

Json rowOf(const std::vector<std::string>& columns, std::size_t key, const Shape& shape, Choices& choices) {
  Json row = Json::object();
  const unsigned char odd = choices.byte();
  for (const std::string& column : columns) row[column] = value(column, key, shape, choices);
  if (odd == 255) row["more"] = 1;
  if (odd == 254) row.erase(columns[choices.below(columns.size())]);
  return odd == 253 ? wildValue(choices) : row;
}

Json manifestOf(tovrdb::Session& session, const Shape& shape, Choices& choices) {
  Json manifest = {{"format", tovrdb::kExportFormat}, {"version", tovrdb::kExportVersion}};
  for (const char* table : tovrdb::kTables) {
    Json rows = Json::array();
    const auto columns = tovrdb::columnNames(session.connection(), table);
    const std::size_t count = choices.byte() < 240 ? 1 : choices.below(3);  // the others refer to the first
    for (std::size_t key = 1; key <= count; ++key) rows.push_back(rowOf(columns, key, shape, choices));
    manifest["tables"][table] = rows;
    manifest["sequence"][table] = choices.byte() < 250 ? Json(3) : wildValue(choices);
  }
  switch (choices.byte()) {
    case 255:
      manifest["tables"]["more"] = Json::array();
      break;
    case 254:
      manifest.erase("sequence");
      break;
    case 253:
      manifest["tables"] = wildValue(choices);
      break;
    default:
      break;
  }
  return manifest;
}

Bytes payloadOf(const Shape& shape, Choices& choices) {
  if (choices.byte() >= 240) return choices.rest();
  const std::string header =
      tovrdb::npyHeader(tovrdb::NumberType::kUint8, {shape.rows, shape.columns, shape.cellBytes});
  Bytes file(header.begin(), header.end());
  const Bytes cells = noise(shape.rows * shape.columns * shape.cellBytes, 1);
  file.insert(file.end(), cells.begin(), cells.end());
  return file;
}

std::int64_t rowsIn(tovrdb::Session& session, const std::string& table) {
  return tovrdb::queryNumber(session.connection(), "select count(*) from " + table);
}

void requirePayload(tovrdb::Session& session, const std::string& table, const Json& row, const Bytes& file) {
  const std::string query = "select data from " + table + " where id = " + row["id"].dump();
  const auto blob = tovrdb::queryBlob(session.connection(), query);
  require(blob.has_value(), "a row has lost its key");
  const std::string form = row["data"]["form"];
  if (form == tovrdb::kStoredForm) return require(*blob == file, "a stored blob was changed");
  const Bytes payload = tovrdb::decipherBlob(session.host().encryption(), *blob);
  if (form == tovrdb::kPayloadForm) return require(payload == file, "a payload was changed");
  const tovrdb::NpyArray array = tovrdb::parseNpy(file, "the payload");
  require(payload == array.bytes, "cells were changed");
  require(array.shape[0] * array.shape[1] * row["databitwidth"].get<std::size_t>() == payload.size(),
          "cells that their row does not fit");
}

void requireStored(tovrdb::Session& session, const Json& manifest, const Bytes& payload) {
  for (const char* table : tovrdb::kTables) {
    const Json& rows = manifest["tables"][table];
    require(rowsIn(session, table) == static_cast<std::int64_t>(rows.size()), "rows were lost");
    for (const Json& row : rows) {
      const bool isPayload = row.contains("data") && row["data"].is_object() && row["data"].contains("file");
      if (isPayload && row["id"].is_number_integer()) requirePayload(session, table, row, payload);
    }
  }
}

void test(Tool& tool, const std::string& folder, const Bytes& payload) {
  tovrdb::Session& session = tool.session;
  session.require(session.manager().openDB(":memory:", kRawKey));  // in place of the one before
  Json manifest;
  try {
    manifest = tovrdb::readManifest(folder);
    tovrdb::importFolder(session, folder, manifest);
  } catch (const tovrdb::Error&) {
    session.require(session.manager().createTables());
    for (const char* table : tovrdb::kTables) require(rowsIn(session, table) == 0, "half a folder was stored");
    return;
  }
  requireStored(session, manifest, payload);
}

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  static const ScratchFolder scratch;
  static const std::string folder = scratch.path("folder");
  static Tool tool;
  Choices choices(data, size);
  Bytes manifest;
  Bytes payload;
  if (choices.flag()) {  // any text, then, behind a zero byte, any payload
    manifest = choices.rest();
    const auto zero = std::find(manifest.begin(), manifest.end(), '\0');
    payload.assign(zero == manifest.end() ? zero : zero + 1, manifest.end());
    manifest.erase(zero, manifest.end());
  } else {
    tool.session.require(tool.session.manager().createTables());
    const Shape shape(choices);
    const std::string text = tovrdb::jsonText(manifestOf(tool.session, shape, choices));
    manifest.assign(text.begin(), text.end());
    payload = payloadOf(shape, choices);
  }
  std::filesystem::create_directory(folder);
  writeFile(scratch.path("outside"), {'s', 'e', 'c', 'r', 'e', 't'});
  writeFile(folder + "/" + tovrdb::kManifestName, manifest);
  writeFile(folder + "/" + kPayload, payload);
  test(tool, folder, payload);
  return 0;
}
