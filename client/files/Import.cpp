#include <fmt/core.h>

#include <filesystem>
#include <map>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/cells/CellBlock.h"
#include "client/contents/StoredBlob.h"
#include "client/disk/FileInput.h"
#include "client/disk/FileOutput.h"
#include "client/disk/Platform.h"
#include "client/files/Exchange.h"
#include "client/session/SqlQuery.h"
#include "client/storing/Changes.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

std::uint64_t bytesIn(const std::string& folder) {
  std::uint64_t bytes = 0;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(pathOf(folder), error)) {
    const std::uintmax_t size = entry.file_size(error);
    if (!error) bytes += size;
  }
  return bytes;
}

class Importer {
 public:
  Importer(Session& session, const std::string& folder, const Json& manifest)
      : session_(session), folder_(folder), tables_(manifest["tables"]), progress_("import", bytesIn(folder)) {
    for (const Json& area : tables_["Coef_Info"]) areas_.emplace(wholeNumber(member(area, "coefid", "an area")), &area);
  }

  ImportRows rows(const std::string& table) {
    return {table, &tables_[table],
            [this, table](const Json& row, const Json& place) { return read(table, row, place); },
            [this] { progress_.advance(0); }};
  }

 private:
  Bytes read(const std::string& table, const Json& row, const Json& place) {
    const std::string name = textMember(place, "file", "a payload");
    const std::string form = textMember(place, "form", name);
    Bytes bytes = readWholeFile(pathInside(folder_, name));
    progress_.advance(bytes.size());
    if (form == kStoredForm) return bytes;
    if (form == kCellsForm) {
      bytes = cells(parseNpy(std::move(bytes), name), table, row, name);
    } else if (form != kPayloadForm) {
      refuseJson(name, fmt::format("its form \"{}\" is unknown", form));
    }
    return encipherBlob(session_.host().encryption(), bytes.data(), bytes.size());
  }

  // The bytes of the array, which must fill the rectangle of the block's first area.
  Bytes cells(NpyArray array, const std::string& table, const Json& row, const std::string& name) const {
    if (table != kBlockTable) refuseJson(name, "only blocks have cells");
    const CellBlock block = blockFromArray(std::move(array), rectOfBlock(row, name), {});
    const std::int32_t cellBytes = numberMember(row, "databitwidth", name);
    if (block.cellBytes != cellBytes) {
      throw Error(kFileProblem, "{} has {} bytes per cell, its row says {}", name, block.cellBytes, cellBytes);
    }
    return {block.bytes.get(), block.bytes.get() + block.size()};
  }

  // The rectangle of the first area that refers to the block.
  Rect rectOfBlock(const Json& block, const std::string& name) const {
    const auto found = areas_.find(wholeNumber(member(block, "id", name)));
    if (found == areas_.end()) refuseJson(name, "no area refers to its block");
    const Json& area = *found->second;
    const Rect rect{numberMember(area, "left", name), numberMember(area, "top", name),
                    numberMember(area, "right", name), numberMember(area, "bottom", name)};
    if (columnsOf(rect) <= 0 || rowsOf(rect) <= 0) refuseJson(name, "its area's rectangle is inverted");
    return rect;
  }

  Session& session_;
  const std::string& folder_;
  const Json& tables_;
  std::map<std::optional<std::int64_t>, const Json*> areas_;  // the first that refers to a block, by the block's key
  Progress progress_;
};

// Keys that were issued and deleted since are to stay used.
SetLastKeys lastKeys(const Json& sequence) {
  SetLastKeys change;
  for (const auto& [table, last] : requireObject(sequence, "\"sequence\"").items()) {
    if (!isTable(table)) continue;
    const auto number = wholeNumber(last);
    if (!number) refuseJson("\"sequence\"", fmt::format("the last key of {} is not a whole number", table));
    change.keys.emplace_back(table, *number);
  }
  return change;
}

}  // namespace

Json readManifest(const std::string& folder) {
  std::error_code error;
  if (!fs::is_directory(pathOf(folder), error)) throw Error(kFileProblem, "there is no folder {}", folder);
  Json manifest = readJson(pathInside(folder, kManifestName));
  if (textMember(manifest, "format", kManifestName) != kExportFormat ||
      numberMember(manifest, "version", kManifestName) != kExportVersion) {
    refuseJson(kManifestName, "it is of another format, or of a version that this program does not know");
  }
  const Json& tables = member(manifest, "tables", kManifestName);
  for (const char* table : kTables) requireArray(member(tables, table, "\"tables\""), table);
  if (tables.size() != kTables.size()) refuseJson(kManifestName, "it has tables that no database file has");
  return manifest;
}

void importFolder(Session& session, const std::string& folder, const Json& manifest) {
  Importer importer(session, folder, manifest);
  applyChanges(session, [&](Session&) {
    ChangePlan plan;
    plan.changes.emplace_back(CreateTables{});
    for (const char* table : kTables) plan.changes.emplace_back(importer.rows(table));
    plan.changes.emplace_back(lastKeys(member(manifest, "sequence", kManifestName)));
    return plan;
  });
}

}  // namespace tovrdb
