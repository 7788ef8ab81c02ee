#include "tool/database/Inventory.h"

#include <cstdlib>
#include <map>

#include "tool/database/SqlQuery.h"

namespace tovrtool {
namespace {

using Items = std::vector<Item>;

std::int64_t number(const std::string& text) { return std::strtoll(text.c_str(), nullptr, 10); }

void addMetadata(Session& session, Items& items) {
  const auto record = session.host().makeRecord<tovr::DBInfo>();
  session.require(session.manager().queryData(record.get()));
  items.push_back({"metadata",
                   {{"database type", std::to_string(session.manager().getDBType())},
                    {"name", record->dbname},
                    {"structure version", record->datastructversion},
                    {"software version", record->softwareversion},
                    {"software type", record->softwaretype},
                    {"database version", record->dbversion}},
                   {},
                   {}});
  for (const Row& row : queryRows(session.connection(), "select dbname from Attach_DB_List order by id")) {
    items.push_back({"attached database " + row[0], {}, {}, {}});
  }
}

void addScreens(Session& session, Items& items) {
  for (const StoredScreen& screen : storedScreens(session)) {
    items.push_back({"screen " + screen.name, {{"rectangle", toText(screen.rect)}}, {}, {}});
  }
}

void addBlocks(Session& session, Items& items) {
  std::map<std::int64_t, Row> details;
  for (Row& row : queryRows(session.connection(),
                            "select i.id, length(c.data), c.version, i.multilayersize, hex(i.multilayerlist)"
                            " from Coef_Info i left join Coef c on c.id = i.coefid")) {
    const std::int64_t id = number(row[0]);
    details[id] = std::move(row);
  }
  for (const StoredArea& area : storedAreas(session)) {
    const Row& row = details.at(area.id);
    items.push_back({"block of " + toText(area) + ", type " + std::to_string(area.type),
                     {{"area number", std::to_string(area.number)},
                      {"bytes per cell", std::to_string(area.cellBytes)},
                      {"version", row[2]},
                      {"layers", row[3]},
                      {"layer list", row[4]}},
                     BlobPlace{"Coef", area.blockId, number(row[1])},
                     area});
  }
}

void addData(Session& session, Items& items) {
  for (const Row& row : queryRows(session.connection(),
                                  "select i.datatype, s.screenname, d.version, d.id, length(d.data) from DataInfo i"
                                  " left join Data d on d.id = i.dataid"
                                  " left join Screen_Info s on s.id = i.screenid order by i.id")) {
    items.push_back({"data of type " + row[0],
                     {{"screen", row[1]}, {"version", row[2]}},
                     BlobPlace{"Data", number(row[3]), number(row[4])},
                     {}});
  }
}

// Measurements have no name but their key: the library rejects the rows that would place them.
void addMeasurements(Session& session, Items& items) {
  for (const Row& row :
       queryRows(session.connection(),
                 "select d.id, d.version, length(d.data), i.datatype, i.left || ',' || i.top || '..' || i.right || ','"
                 " || i.bottom from LumChromData d left join LumChromDataInfo i on i.dataid = d.id order by d.id")) {
    items.push_back({"measurement " + row[0],
                     {{"version", row[1]}, {"type", row[3]}, {"rectangle", row[4]}},
                     BlobPlace{"LumChromData", number(row[0]), number(row[2])},
                     {}});
  }
}

// Names may occur several times, as of areas that lie on one another: the order tells them apart.
void makeUnique(Items& items) {
  std::map<std::string, int> seen;
  for (Item& item : items) {
    const int count = ++seen[item.name];
    if (count > 1) item.name += " (number " + std::to_string(count) + " of this name)";
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

}  // namespace tovrtool
