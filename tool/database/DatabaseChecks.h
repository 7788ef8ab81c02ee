// The checks of an open database file, from its pages to the sense of its rows.
#pragma once

#include <string>
#include <vector>

#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/Verdict.h"
#include "tool/io/Progress.h"
#include "tool/system/ToolError.h"

namespace tovrtool {

// Name and create statement of every table of a file.
std::vector<Row> schemaOf(Session& session);
// The same as the library makes them. REQUIRES: no Session is open in this process.
std::vector<Row> expectedSchema(const std::string& plugin);

// Bytes that checkDatabase reads, as it reports them to `progress`.
std::uint64_t bytesToCheck(Session& session);

// What says nothing about the file: an interrupt, another program that keeps it busy.
bool isNoFault(const ToolError& error);

// From here on one state of the file is read, whoever else writes to it. After a page that could not be read the engine
// refuses every other until then.
void beginAgain(Session& session);

// What is wrong with the pages of an open file, or of the attached one that `schema` names: nothing if it is whole.
std::vector<std::string> pageFaults(Session& session, const std::string& schema = "main");

// One verdict per check; a check that the file's damage ends reports that as a fault.
std::vector<Verdict> checkDatabase(Session& session, const std::vector<Row>& schema, Progress& progress);

}  // namespace tovrtool
