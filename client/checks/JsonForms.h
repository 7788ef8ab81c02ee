// What the parts of a file look like as JSON, in all that is printed and made.
//
// An interface with scripts: members may be added, never renamed. Names are in lower case with underscores; numbers are
// numbers; what is not known is left out, what is no finite number is null.
#pragma once

#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/cells/NumberForm.h"
#include "client/cells/Rect.h"
#include "client/checks/Check.h"

namespace tovrdb {

// [left, top, right, bottom]
Json rectJson(const Rect& rect);

// A value of a column that holds numbers as a number, and a text that some program stored there as it is.
Json numberOrText(const std::string& value);

// Adds "dtype", "scale" and, if there is one, "unit".
void addJson(Json& object, const NumberForm& form);

// A list of {check, ok, detail, faults, fault_count, warnings, warning_count}; "ok" is true without faults. The lists
// keep the first of very many.
Json checksJson(const std::vector<Verdict>& verdicts);

}  // namespace tovrdb
