#include <fmt/core.h>

#include <algorithm>

#include "client/checks/Check.h"
#include "client/storing/Changes.h"

namespace tovrdb {
namespace {

// Leaves out the engine's own tables, which begin with "sqlite_", and the indexes of constraints, which have no
// statement.
constexpr char kSchema[] =
    "select type, name, tbl_name, sql from sqlite_master where not (type = 'table' and lower(substr(name, 1, 7)) ="
    " 'sqlite_') and not (type = 'index' and sql is null) order by type, name";

constexpr char kRemedy[] = "drop it with an SQLCipher shell; a file made by export and import is without it, too";

const Row* named(const std::vector<Row>& schema, const Row& row) {
  const auto found = std::find_if(schema.begin(), schema.end(),
                                  [&](const Row& other) { return other[0] == row[0] && other[1] == row[1]; });
  return found == schema.end() ? nullptr : &*found;
}

bool isUnique(const Row& index) {
  std::string start = index[3].substr(0, 13);
  std::transform(start.begin(), start.end(), start.begin(), [](unsigned char c) { return std::tolower(c); });
  return start == "create unique";
}

void addForeign(const Row& row, Verdict& verdict) {
  const std::string& type = row[0];
  if (type == "trigger") {
    verdict.faults.add(
        fmt::format("the trigger {} on {} runs with every change there and can undo it; {}", row[1], row[2], kRemedy));
  } else if (type == "view") {
    verdict.faults.add(fmt::format("the view {} is not part of a calibration database; {}", row[1], kRemedy));
  } else if (type == "index" && isUnique(row)) {
    verdict.faults.add(fmt::format("the unique index {} on {} can refuse rows; {}", row[1], row[2], kRemedy));
  } else if (type == "index") {
    verdict.warnings.add(fmt::format("the index {} on {} was made by another program", row[1], row[2]));
  } else {
    verdict.warnings.add(fmt::format("the table {} was made by another program; the library does not use it", row[1]));
  }
}

}  // namespace

std::vector<Row> schemaOf(Session& session) { return queryRows(session.connection(), kSchema); }

std::vector<Row> expectedSchema(const std::string& plugin) {
  Session session = Session::openMemory(plugin);
  applyChanges(session, [](Session&) { return ChangePlan{{CreateTables{}}, {}}; });
  return schemaOf(session);
}

void compareSchema(const std::vector<Row>& expected, const std::vector<Row>& present, Verdict& verdict) {
  verdict.detail = fmt::format("{} tables", expected.size());
  for (const Row& row : expected) {
    const Row* found = named(present, row);
    if (found == nullptr) {
      verdict.faults.add(fmt::format("the {} {} is missing", row[0], row[1]));
    } else if ((*found)[3] != row[3]) {
      verdict.faults.add(fmt::format("the {} {} was not made by this statement: {}", row[0], row[1], row[3]));
    }
  }
  for (const Row& row : present) {
    if (named(expected, row) == nullptr) addForeign(row, verdict);
  }
}

}  // namespace tovrdb
