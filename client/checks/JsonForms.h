// The parts of a database file as JSON, in everything that is printed or written.
//
// Scripts rely on these forms: members may be added, never renamed. Names are in lower case with underscores. Unknown
// values are left out; numbers that are not finite are null.
#pragma once

#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/cells/NumberForm.h"
#include "client/cells/Rect.h"
#include "client/checks/Check.h"
#include "client/checks/FileDifference.h"
#include "client/checks/FileFacts.h"

namespace tovrdb {

// [left, top, right, bottom]
Json rectJson(const Rect& rect);

// The value of a column of numbers: a number, or the text that another program stored there.
Json numberOrText(const std::string& value);

// Adds "dtype", "scale" and, if there is one, "unit".
void addJson(Json& object, const NumberForm& form);

// A list of {check, ok, detail, faults, fault_count, warnings, warning_count}; "ok" is true without faults. The lists
// keep the first of very many.
Json checksJson(const std::vector<Verdict>& verdicts);

// {database_type, description, engine, tables, screens}
Json factsJson(const FileFacts& facts);

// {item, kind, [screen, type, rect, id]}, and by what differs: {only_in}, {field, a, b}, {cells, differing, at} with
// {component, a, b, largest} of numbers, {bytes_a, bytes_b, differing}, or {fault_a, fault_b}. "a" is the first file.
Json differenceJson(const Difference& difference);

}  // namespace tovrdb
