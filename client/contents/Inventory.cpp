#include "client/contents/Inventory.h"

#include <fmt/core.h>

#include <map>
#include <utility>

#include "client/contents/HostData.h"
#include "client/contents/Screens.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

using Items = std::vector<Item>;

Item& add(Items& items, const char* kind, std::string name) {
  Item& item = items.emplace_back();
  item.name = std::move(name);
  item.place.kind = kind;
  return item;
}

void addMetadata(Session& session, Items& items) {
  const auto record = session.host().makeRecord<tovr::DBInfo>();
  session.require(session.manager().queryData(record.get()));
  add(items, "metadata", "metadata").fields = {{"database type", std::to_string(session.manager().getDBType())},
                                               {"name", record->dbname},
                                               {"structure version", record->datastructversion},
                                               {"software version", record->softwareversion},
                                               {"software type", record->softwaretype},
                                               {"database version", record->dbversion}};
  for (const Row& row : queryRows(session.connection(), "select dbname from Attach_DB_List order by id")) {
    add(items, "attached_database", "attached database " + row[0]);
  }
}

void addScreens(Session& session, Items& items) {
  for (const StoredScreen& screen : storedScreens(session)) {
    requireSound(screen.rect, "screen " + screen.name);
    Item& item = add(items, "screen", "screen " + screen.name);
    item.place.screen = screen.name;
    item.place.rect = screen.rect;
    item.fields = {{"rectangle", toText(screen.rect)}};
  }
}

void addBlocks(Session& session, Items& items) {
  for (const StoredArea& area : storedAreas(session)) {
    const auto form = keptForm(area);
    Item& item = add(items, "block", fmt::format("block of {}, type {}", toText(area), area.type));
    item.place.screen = area.screen;
    item.place.type = std::to_string(area.type);
    item.place.rect = area.rect;
    item.fields = {{"area number", std::to_string(area.number)},
                   {"bytes per cell", std::to_string(area.cellBytes)},
                   {"version", splitVersion(area.version, area.cellBytes).text},
                   {"numbers", form ? toText(*form) : ""},
                   {"layers", area.layers},
                   {"layer list", area.layerList}};
    item.blob = BlobPlace{kBlockTable, area.blockId, area.storedBytes};
    item.area = area;
  }
}

void addData(Session& session, Items& items) {
  for (const StoredData& data : storedData(session)) {
    Item& item = add(items, "data", "data of type " + data.type);
    item.place.type = data.type;
    item.fields = {{"screen", data.screen}, {"version", data.version}};
    item.blob = BlobPlace{kDataTable, data.blobId, data.storedBytes};
  }
}

// A measurement has only its key as a name: the library rejects the rows that would place it.
void addMeasurements(Session& session, Items& items) {
  for (const StoredMeasurement& measurement : storedMeasurements(session)) {
    Item& item = add(items, "measurement", fmt::format("measurement {}", measurement.id));
    item.place.id = measurement.id;
    item.fields = {{"version", measurement.version},
                   {"type", measurement.type},
                   {"rectangle", measurement.rect ? toText(*measurement.rect) : ""}};
    item.blob = BlobPlace{kMeasurementTable, measurement.id, measurement.storedBytes};
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
