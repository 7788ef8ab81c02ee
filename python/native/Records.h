// What a database file holds, as dictionaries whose names are the fields of the package's records.
//
// Other programs may store text that is not UTF-8. Fields keep every byte ("surrogateescape"), so that each name can be
// passed back.
#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <vector>

#include "client/cells/NumberForm.h"
#include "client/checks/Check.h"
#include "client/checks/FileDifference.h"
#include "client/checks/FileFacts.h"
#include "client/contents/HostData.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"

namespace tovrdb::python {

// For messages: control characters and bytes that are not UTF-8 are replaced.
pybind11::str shownText(const std::string& text);
pybind11::list shownTexts(const std::vector<std::string>& texts);

pybind11::tuple tupleOf(const Rect& rect);  // left, top, right, bottom
pybind11::dict dictOf(const StoredScreen& screen);
pybind11::dict dictOf(const StoredArea& area);
pybind11::dict dictOf(const StoredData& data);
pybind11::dict dictOf(const StoredMeasurement& measurement);
pybind11::dict dictOf(const FileFacts& facts);
pybind11::dict dictOf(const Verdict& verdict);
pybind11::dict dictOf(const Difference& difference);

// Sets dtype, scale and unit: None, None and "" without a form.
void describe(pybind11::dict& record, const std::optional<NumberForm>& form);

template <class Record>
pybind11::list listOf(const std::vector<Record>& records) {
  pybind11::list list;
  for (const Record& record : records) list.append(dictOf(record));
  return list;
}

}  // namespace tovrdb::python
