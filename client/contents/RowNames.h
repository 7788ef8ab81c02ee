// What the rows of a file hold, in the words of whoever stored it: "area 2 (0,0,63,31 of type 1 on screen left)".
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "client/contents/StoredArea.h"
#include "client/session/Session.h"

namespace tovrdb {

std::string nameOf(const Placement& area);

class RowNames {
 public:
  // Reads no payloads. Rows that cannot be read get no name.
  explicit RowNames(Session& session);

  // "screen left", "data of type 5", "measurement 1"; "row 3 of DB_Info" for rows without a name. A row of "Coef" or
  // "Data" goes by what uses it: its area, its type of data.
  std::string of(const std::string& table, std::int64_t id) const;

  // Whether a row of "Coef" or "Data" is known to be used by none.
  bool isUnused(const std::string& table, std::int64_t id) const;

 private:
  void add(const std::string& table, std::int64_t id, const std::string& name);
  void readScreens(Session& session);
  void readAreas(Session& session);
  void readData(Session& session);
  void readMeasurements(Session& session);

  std::map<std::pair<std::string, std::int64_t>, std::string> names_;
  std::map<std::string, bool> complete_;  // by table: all of its rows that are used have a name
};

}  // namespace tovrdb
