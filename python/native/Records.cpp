#include "native/Records.h"

#include <cstdint>
#include <optional>

#include "client/base/Text.h"
#include "client/checks/JsonForms.h"
#include "client/reading/NumberForms.h"

namespace tovrdb::python {

namespace py = pybind11;
using namespace py::literals;

namespace {

py::str decoded(const std::string& text, const char* errors) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), errors));
}

py::str textOf(const std::string& text) { return decoded(text, "surrogateescape"); }

// Text only if another program stored something other than a number.
py::object numberOrText(const std::string& text) {
  const Json value = tovrdb::numberOrText(text);
  return value.is_number() ? py::object(py::int_(value.get<std::int64_t>())) : textOf(text);
}

py::object rectOrNone(const std::optional<Rect>& rect) {
  return rect ? py::object(tupleOf(*rect)) : py::object(py::none());
}

py::dict factsOf(const std::vector<Fact>& facts) {
  py::dict dict;
  for (const Fact& fact : facts) dict[fact.name] = textOf(fact.value);
  return dict;
}

// The members of a difference's record that depend on what differs.
struct DifferenceMembers {
  py::dict operator()(const OnlyBefore& only) const { return members("only_before", textOf(only.summary), ""); }
  py::dict operator()(const OnlyAfter& only) const { return members("only_after", "", textOf(only.summary)); }
  py::dict operator()(const FieldDiffers& field) const {
    py::dict record = members("field", textOf(field.before), textOf(field.after));
    record["field"] = textOf(field.field);
    return record;
  }
  py::dict operator()(const CellsDiffer& what) const {
    const BlockDifference& cells = what.cells;
    py::dict record = members("cells", "", "");
    record["differing"] = cells.differing;
    record["at"] = py::make_tuple(cells.at.x, cells.at.y);
    if (!what.form) return record;
    record["component"] = cells.component;
    record["before"] = cells.before;
    record["after"] = cells.after;
    return record;
  }
  py::dict operator()(const BytesDiffer& bytes) const {
    py::dict record = members("bytes", "", "");
    record["differing"] = bytes.differing;
    return record;
  }
  py::dict operator()(const Unreadable& faults) const {
    return members("fault", textOf(faults.before), textOf(faults.after));
  }

 private:
  static py::dict members(const char* kind, const py::str& before, const py::str& after) {
    return py::dict("kind"_a = kind, "field"_a = "", "before"_a = before, "after"_a = after);
  }
};

}  // namespace

py::str shownText(const std::string& text) { return decoded(printable(text), "replace"); }

py::list shownTexts(const std::vector<std::string>& texts) {
  py::list list;
  for (const std::string& text : texts) list.append(shownText(text));
  return list;
}

py::tuple tupleOf(const Rect& rect) { return py::make_tuple(rect.left, rect.top, rect.right, rect.bottom); }

void describe(py::dict& record, const std::optional<NumberForm>& form) {
  record["dtype"] = form ? py::object(py::str(nameOf(form->dtype))) : py::object(py::none());
  record["scale"] = form ? py::object(py::float_(form->scale.of(1))) : py::object(py::none());
  record["unit"] = form ? textOf(form->unit) : textOf("");
}

py::dict dictOf(const StoredScreen& screen) {
  return py::dict("id"_a = screen.id, "name"_a = textOf(screen.name), "rect"_a = tupleOf(screen.rect));
}

py::dict dictOf(const StoredArea& area) {
  py::dict record("id"_a = area.id, "screen"_a = textOf(area.screen), "type"_a = area.type, "number"_a = area.number,
                  "rect"_a = tupleOf(area.rect), "cell_bytes"_a = area.cellBytes, "stored_bytes"_a = area.storedBytes,
                  "text"_a = textOf(splitVersion(area.version, area.cellBytes).text),
                  "changed"_a = textOf(area.changed), "fault"_a = shownText(area.fault));
  describe(record, keptForm(area));
  return record;
}

py::dict dictOf(const StoredData& data) {
  return py::dict("type"_a = numberOrText(data.type), "stored_bytes"_a = data.storedBytes,
                  "text"_a = textOf(data.version), "screen"_a = textOf(data.screen));
}

py::dict dictOf(const StoredMeasurement& measurement) {
  return py::dict("id"_a = measurement.id, "stored_bytes"_a = measurement.storedBytes,
                  "text"_a = textOf(measurement.version), "type"_a = textOf(measurement.type),
                  "rect"_a = rectOrNone(measurement.rect));
}

py::dict dictOf(const FileFacts& facts) {
  py::dict tables;
  for (const TableFacts& table : facts.tables) {
    tables[textOf(table.name)] = py::dict("rows"_a = table.rows, "bytes"_a = table.bytes);
  }
  return py::dict("type"_a = facts.type, "description"_a = factsOf(facts.description),
                  "engine"_a = factsOf(facts.engine), "tables"_a = tables);
}

py::dict dictOf(const Verdict& verdict) {
  return py::dict("name"_a = shownText(verdict.name), "ok"_a = verdict.ok(), "detail"_a = shownText(verdict.detail),
                  "faults"_a = py::tuple(shownTexts(verdict.faults.first(Findings::kMostKept))),
                  "warnings"_a = py::tuple(shownTexts(verdict.warnings.first(Findings::kMostKept))));
}

py::dict dictOf(const Difference& difference) {
  py::dict record = std::visit(DifferenceMembers(), difference.what);
  record["item"] = textOf(difference.item);
  record["screen"] = textOf(difference.place.screen);
  record["type"] = textOf(difference.place.type);
  record["rect"] = rectOrNone(difference.place.rect);
  return record;
}

}  // namespace tovrdb::python
