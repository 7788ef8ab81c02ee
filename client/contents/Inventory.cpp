#include "client/contents/Inventory.h"

#include <fmt/core.h>

#include <map>

#include "client/contents/HostData.h"
#include "client/contents/Screens.h"
#include "client/session/SqlQuery.h"
#include "client/session/Tables.h"

namespace tovrdb {
namespace {

using Items = std::vector<Item>;

void addMetadata(Session& session, Items& items) {
  const auto record = session.host().makeRecord<tovr::DBInfo>();
  session.require(session.manager().queryData(record.get()));
  items.push_back({"metadata",
                   {"metadata", {}, {}, {}, {}},
                   {{"database type", std::to_string(session.manager().getDBType())},
                    {"name", record->dbname},
                    {"structure version", record->datastructversion},
                    {"software version", record->softwareversion},
                    {"software type", record->softwaretype},
                    {"database version", record->dbversion}},
                   {},
                   {}});
  for (const Row& row : queryRows(session.connection(), "select dbname from Attach_DB_List order by id")) {
    items.push_back({"attached database " + row[0], {"attached_database", {}, {}, {}, {}}, {}, {}, {}});
  }
}

void addScreens(Session& session, Items& items) {
  for (const StoredScreen& screen : storedScreens(session)) {
    requireSound(screen.rect, "screen " + screen.name);
    items.push_back({"screen " + screen.name,
                     {"screen", screen.name, {}, screen.rect, {}},
                     {{"rectangle", toText(screen.rect)}},
                     {},
                     {}});
  }
}

void addBlocks(Session& session, Items& items) {
  for (const StoredArea& area : storedAreas(session)) {
    const auto form = keptForm(area);
    items.push_back({fmt::format("block of {}, type {}", toText(area), area.type),
                     {"block", area.screen, std::to_string(area.type), area.rect, {}},
                     {{"area number", std::to_string(area.number)},
                      {"bytes per cell", std::to_string(area.cellBytes)},
                      {"version", splitVersion(area.version, area.cellBytes).text},
                      {"numbers", form ? toText(*form) : ""},
                      {"layers", area.layers},
                      {"layer list", area.layerList}},
                     BlobPlace{kBlockTable, area.blockId, area.storedBytes},
                     area});
  }
}

void addData(Session& session, Items& items) {
  for (const StoredData& data : storedData(session)) {
    items.push_back({"data of type " + data.type,
                     {"data", {}, data.type, {}, {}},
                     {{"screen", data.screen}, {"version", data.version}},
                     BlobPlace{kDataTable, data.blobId, data.storedBytes},
                     {}});
  }
}

// A measurement has only its key as a name: the library rejects the rows that would place it.
void addMeasurements(Session& session, Items& items) {
  for (const StoredMeasurement& measurement : storedMeasurements(session)) {
    items.push_back({fmt::format("measurement {}", measurement.id),
                     {"measurement", {}, {}, {}, measurement.id},
                     {{"version", measurement.version},
                      {"type", measurement.type},
                      {"rectangle", measurement.rect ? toText(*measurement.rect) : ""}},
                     BlobPlace{kMeasurementTable, measurement.id, measurement.storedBytes},
                     {}});
  }
}

// Names may repeat, for instance of overlapping areas: their order tells them apart.
void makeUnique(Items& items) {
  std::map<std::string, int> seen;
  for (Item& item : items) {
    const int count = ++seen[item.name];
    if (count > 1) item.name += fmt::format(" (number {} of this name)", count);
  }
}

}  // namespace

std::vector<Item> takeInventory(Session& session) {
  Items items;
  addMetadata(session, items);
  addScreens(session, items);
  addBlocks(session, items);
  addData(session, items);
  addMeasurements(session, items);
  makeUnique(items);
  return items;
}

}  // namespace tovrdb
