// Names the rows of a file by what they hold, as a person knows it: "area 2 (0,0,63,31 of type 1 on screen left)".
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "client/contents/AreaNames.h"
#include "client/session/Session.h"

namespace tovrdb {

class RowNames {
 public:
  // Reads no payloads. Rows that cannot be read are named by their key.
  explicit RowNames(Session& session);

  // "screen left", "data of type 5", "measurement 1"; "row 3 of DB_Info" for rows without a name. A row of "Coef" or
  // "Data" is named by the area, or the type of data, that uses it.
  std::string of(const std::string& table, std::int64_t id) const;

  // Whether it is known that nothing uses a row of "Coef" or "Data".
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
