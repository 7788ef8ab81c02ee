#include <fmt/core.h>

#include <cstdlib>
#include <map>
#include <set>
#include <utility>

#include "client/base/Listener.h"
#include "client/cells/CellBlock.h"
#include "client/contents/StoredArea.h"
#include "client/contents/StoredBlob.h"
#include "client/disk/UnfinishedFolder.h"
#include "client/files/Exchange.h"
#include "client/files/StoredRows.h"
#include "client/reading/NumberForms.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

// Whether an export writes files of this name: the manifest, TABLE-KEY.npy and TABLE-KEY.bin.
bool isOurs(const std::string& fileName) {
  if (fileName == kManifestName) return true;
  const std::size_t dash = fileName.find('-');
  const std::size_t dot = fileName.find('.');
  if (dash == std::string::npos || dot == std::string::npos || dot <= dash + 1) return false;
  const std::string key = fileName.substr(dash + 1, dot - dash - 1);
  const std::string kind = fileName.substr(dot);
  return isTable(fileName.substr(0, dash)) && key.find_first_not_of("0123456789") == std::string::npos &&
         (kind == ".npy" || kind == ".bin");
}

// By the key of a block: the first area that refers to it.
std::map<std::int64_t, StoredArea> areasByBlock(Session& session) {
  std::map<std::int64_t, StoredArea> found;
  for (StoredArea& area : storedAreas(session)) found.emplace(area.blockId, std::move(area));
  return found;
}

// The rows that refer to payloads.
struct PayloadOwner {
  const char* table;
  const char* column;
  const char* payloads;
};
constexpr PayloadOwner kPayloadOwners[] = {{"Coef_Info", "coefid", kBlockTable},
                                           {"DataInfo", "dataid", kDataTable},
                                           {"LumChromDataInfo", "dataid", kMeasurementTable}};

class Exporter {
 public:
  Exporter(Session& session, const UnfinishedFolder& folder, std::optional<NumberType> dtype)
      : session_(session),
        folder_(folder),
        dtype_(dtype),
        areas_(areasByBlock(session)),
        progress_("export", payloadBytes(session)) {}

  Json everything() {
    Json tables = Json::object();
    for (const char* table : kTables) tables[table] = rows(table);
    for (const PayloadOwner& owner : kPayloadOwners) dropOwners(tables, owner);
    Json sequence = Json::object();
    for (const Row& row : queryRows(session_.connection(), "select name, seq from sqlite_sequence order by name")) {
      sequence[row[0]] = std::strtoll(row[1].c_str(), nullptr, 10);
    }
    Json manifest{{"format", kExportFormat}, {"version", kExportVersion}, {"tables", tables}, {"sequence", sequence}};
    if (!faults_.empty()) manifest["faults"] = faults_;
    return manifest;
  }

  std::size_t files() const { return files_; }
  const std::vector<std::string>& faults() const { return faults_; }

 private:
  static std::uint64_t payloadBytes(Session& session) {
    std::int64_t bytes = 0;
    for (const char* table : kPayloadTables) {
      bytes += queryNumber(session.connection(), fmt::format("select sum(length({})) from {}", kPayloadColumn, table));
    }
    return static_cast<std::uint64_t>(bytes);
  }

  Json rows(const std::string& table) {
    Json all = Json::array();
    readTable(
        session_, table, [&](const Json& row, Bytes blob) { return write(table, row, std::move(blob)); },
        [&](Json row) { all.push_back(std::move(row)); },
        [&](std::int64_t key, const std::string& fault) {
          missing_.emplace(table, key);
          faults_.push_back(fmt::format("row {} of {}: {}", key, table, fault));
        });
    return all;
  }

  // Leaves out the rows that refer to a payload that was left out.
  void dropOwners(Json& tables, const PayloadOwner& owner) {
    Json kept = Json::array();
    for (Json& row : tables[owner.table]) {
      const auto payload = wholeNumber(row.at(owner.column));
      if (!payload || missing_.count({owner.payloads, *payload}) == 0) {
        kept.push_back(std::move(row));
        continue;
      }
      faults_.push_back(fmt::format("row {} of {}, whose payload is row {} of {}{}", row.at("id").dump(), owner.table,
                                    *payload, owner.payloads, areaAt(owner, *payload)));
    }
    tables[owner.table] = std::move(kept);
  }

  // ": area 3 (left, 0,0,7,3), type 1"
  std::string areaAt(const PayloadOwner& owner, std::int64_t payload) const {
    const auto found = owner.payloads == std::string(kBlockTable) ? areas_.find(payload) : areas_.end();
    if (found == areas_.end()) return {};
    return fmt::format(": area {} ({}), type {}", found->second.id, toText(found->second), found->second.type);
  }

  // Writes the file of a payload.
  Json write(const std::string& table, const Json& row, Bytes stored) {
    const std::size_t size = stored.size();
    const std::int64_t key = row.at("id").get<std::int64_t>();
    const std::string name = fmt::format("{}-{}", table, key);
    Json place;
    if (const auto payload = decipherExactly(session_.host().encryption(), stored)) {
      const auto area = table == kBlockTable ? areas_.find(key) : areas_.end();
      const bool cells = area != areas_.end() && fills(payload->size(), area->second.rect, area->second.cellBytes);
      place = cells ? writeCells(name + ".npy", area->second, *payload)
                    : writeFile(name + ".bin", kPayloadForm, {}, *payload);
    } else {
      place = writeFile(name + ".bin", kStoredForm, {}, stored);
    }
    progress_.advance(size);
    return place;
  }

  Json writeCells(const std::string& name, const StoredArea& area, const Bytes& cells) {
    const auto kept = keptForm(area);
    const NumberType dtype = dtype_ ? *dtype_ : kept ? kept->dtype : NumberType::kUint8;
    return writeFile(name, kCellsForm, npyHeader(dtype, blockShape(area.rect, area.cellBytes, dtype)), cells);
  }

  Json writeFile(const std::string& name, const char* form, const std::string& header, const Bytes& bytes) {
    FileOutput file = folder_.file(name);
    file.write(header.data(), header.size());
    file.write(bytes.data(), bytes.size());
    file.commit();
    ++files_;
    return {{"file", name}, {"form", form}};
  }

  Session& session_;
  const UnfinishedFolder& folder_;
  std::optional<NumberType> dtype_;
  std::map<std::int64_t, StoredArea> areas_;
  Progress progress_;
  std::size_t files_ = 0;
  std::set<std::pair<std::string, std::int64_t>> missing_;  // tables and keys
  std::vector<std::string> faults_;
};

std::vector<std::string> otherObjects(Session& session) {
  std::vector<std::string> others;
  for (const Row& row :
       queryRows(session.connection(), "select type, name from sqlite_master where name not like 'sqlite_%'")) {
    if (!isTable(row[1])) others.push_back(row[0] + " " + row[1]);
  }
  return others;
}

}  // namespace

ExportReport exportFolder(Session& session, const std::string& path, Existing existing, unsigned int mode,
                          std::optional<NumberType> dtype) {
  UnfinishedFolder folder(path, existing, mode, isOurs);
  session.beginReading();
  ExportReport report;
  {
    Exporter exporter(session, folder, dtype);
    const std::string manifest = jsonText(exporter.everything());
    FileOutput file = folder.file(kManifestName);
    file.write(manifest.data(), manifest.size());
    file.commit();
    report.payloadFiles = exporter.files();
    report.faults = exporter.faults();
  }
  report.leftOut = otherObjects(session);
  session.require(session.connection().exec("COMMIT"));
  folder.finish();
  return report;
}

}  // namespace tovrdb
