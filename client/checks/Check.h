// The checks of an open database file, from its pages to the sense of its rows.
#pragma once

#include <string>
#include <vector>

#include "client/base/Listener.h"
#include "client/checks/SchemaCheck.h"
#include "client/checks/Verdict.h"
#include "client/session/Damage.h"

namespace tovrdb {

// Bytes that checkDatabase reads, as it reports them to `progress`.
std::uint64_t bytesToCheck(Session& session);

// What is wrong with the pages of an open file, or of the attached one that `schema` names; empty if it is whole.
// Engines of the 3.x generation read the pages that are in use; later ones compare the checksums of all of them.
std::vector<std::string> pageFaults(Session& session, const std::string& schema = "main");

// One verdict per check; a check that the file's damage ends reports that as a fault. What is lost is named by what it
// holds: an area with its rectangle and screen, the type of data, a measurement.
std::vector<Verdict> checkDatabase(Session& session, const std::vector<Row>& schema, Progress& progress);

}  // namespace tovrdb
