#include "client/contents/RowNames.h"

#include <fmt/core.h>

#include "client/base/Error.h"
#include "client/session/Damage.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

constexpr char kPlacementTable[] = "Coef_Info";
constexpr char kDataPlacementTable[] = "DataInfo";
constexpr char kScreenTable[] = "Screen_Info";
constexpr char kMeasurementPlacementTable[] = "LumChromDataInfo";

}  // namespace

RowNames::RowNames(Session& session) {
  const auto attempt = [&](auto read) {
    try {
      (this->*read)(session);
    } catch (const Error& error) {
      if (isNoFault(error)) throw;
      beginAgain(session);
    }
  };
  attempt(&RowNames::readScreens);
  attempt(&RowNames::readAreas);
  attempt(&RowNames::readData);
  attempt(&RowNames::readMeasurements);
}

std::string RowNames::of(const std::string& table, std::int64_t id) const {
  const auto found = names_.find({table, id});
  if (found != names_.end()) return found->second;
  if (table == kBlockTable) return fmt::format("block {}", id);
  if (table == kDataTable) return fmt::format("data blob {}", id);
  if (table == kMeasurementTable) return fmt::format("measurement {}", id);
  return fmt::format("row {} of {}", id, table);
}

bool RowNames::isUnused(const std::string& table, std::int64_t id) const {
  return complete_.count(table) != 0 && names_.count({table, id}) == 0;
}

// A payload that several rows use is named by all of them.
void RowNames::add(const std::string& table, std::int64_t id, const std::string& name) {
  std::string& names = names_[{table, id}];
  names += (names.empty() ? "" : ", ") + name;
}

void RowNames::readScreens(Session& session) {
  tovr::IDBOperate& connection = session.connection();
  visitRows(connection, "select id, screenname from Screen_Info",
            [&] { add(kScreenTable, columnNumber(connection, 0), "screen " + columnText(connection, 1)); });
}

void RowNames::readAreas(Session& session) {
  for (const Placement& area : placements(session)) {
    add(kPlacementTable, area.id, nameOf(area));
    add(kBlockTable, area.blockId, nameOf(area));
  }
  complete_[kBlockTable] = true;
}

void RowNames::readData(Session& session) {
  tovr::IDBOperate& connection = session.connection();
  visitRows(connection, "select id, dataid, datatype from DataInfo", [&] {
    const std::string name = "data of type " + columnText(connection, 2);
    add(kDataPlacementTable, columnNumber(connection, 0), name);
    add(kDataTable, columnNumber(connection, 1), name);
  });
  complete_[kDataTable] = true;
}

// The library stores no such rows; other programs may.
void RowNames::readMeasurements(Session& session) {
  tovr::IDBOperate& connection = session.connection();
  visitRows(connection, "select id, dataid from LumChromDataInfo", [&] {
    add(kMeasurementPlacementTable, columnNumber(connection, 0),
        "placement of measurement " + columnText(connection, 1));
  });
}

}  // namespace tovrdb
