// Whether a file has the tables that the library makes, and nothing that interferes with them.
#pragma once

#include <string>
#include <vector>

#include "client/checks/Verdict.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// Type, name, table and create statement of every table, index, trigger and view of a file; not of the engine's own.
std::vector<Row> schemaOf(Session& session);

// The same of a file that the library makes. REQUIRES: no Session is open in this process.
std::vector<Row> expectedSchema(const std::string& plugin);

// Faults: tables that are missing or of another form; triggers and views, which change what statements do; unique
// indexes, which refuse rows. Warnings: other tables and indexes.
void compareSchema(const std::vector<Row>& expected, const std::vector<Row>& present, Verdict& verdict);

}  // namespace tovrdb
