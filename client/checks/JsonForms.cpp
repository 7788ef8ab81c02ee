#include "client/checks/JsonForms.h"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace tovrdb {
namespace {

Json placeJson(const ItemPlace& place) {
  Json json{{"kind", place.kind}};
  if (!place.screen.empty()) json["screen"] = place.screen;
  if (!place.type.empty()) json["type"] = numberOrText(place.type);
  if (place.rect) json["rect"] = rectJson(*place.rect);
  if (place.id) json["id"] = *place.id;
  return json;
}

// The members that tell what differs.
struct DifferenceMembers {
  Json operator()(const OnlyBefore&) const { return {{"only_in", "a"}}; }
  Json operator()(const OnlyAfter&) const { return {{"only_in", "b"}}; }
  Json operator()(const FieldDiffers& field) const {
    return {{"field", field.field}, {"a", field.before}, {"b", field.after}};
  }
  Json operator()(const CellsDiffer& what) const {
    const BlockDifference& cells = what.cells;
    Json json{{"cells", cells.cells}, {"differing", cells.differing}, {"at", {cells.at.x, cells.at.y}}};
    if (!what.form) return json;
    json.update({{"component", cells.component}, {"a", cells.before}, {"b", cells.after}, {"largest", cells.largest}});
    return json;
  }
  Json operator()(const BytesDiffer& bytes) const {
    return {{"bytes_a", bytes.sizeBefore}, {"bytes_b", bytes.sizeAfter}, {"differing", bytes.differing}};
  }
  Json operator()(const Unreadable& faults) const {
    Json json = Json::object();
    if (!faults.before.empty()) json["fault_a"] = faults.before;
    if (!faults.after.empty()) json["fault_b"] = faults.after;
    return json;
  }
};

// Texts, as their writers chose them.
Json descriptionJson(const std::vector<Fact>& facts) {
  Json object = Json::object();
  for (const Fact& fact : facts) object[fact.name] = fact.value;
  return object;
}

Json engineJson(const std::vector<Fact>& facts) {
  Json object = Json::object();
  for (const Fact& fact : facts) object[fact.name] = numberOrText(fact.value);
  return object;
}

Json tablesJson(const std::vector<TableFacts>& tables) {
  Json list = Json::array();
  for (const TableFacts& table : tables) {
    Json& object = list.emplace_back(Json{{"name", table.name}, {"rows", table.rows}, {"bytes", table.bytes}});
    if (!table.fault.empty()) object["fault"] = table.fault;
  }
  return list;
}

Json screensJson(const std::vector<ScreenFacts>& screens) {
  Json list = Json::array();
  for (const auto& [screen, areas] : screens) {
    list.push_back({{"id", screen.id}, {"name", screen.name}, {"rect", rectJson(screen.rect)}, {"blocks", areas}});
  }
  return list;
}

}  // namespace

Json rectJson(const Rect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

Json numberOrText(const std::string& value) {
  std::int64_t number = 0;
  const char* const end = value.data() + value.size();
  const auto parsed = std::from_chars(value.data(), end, number);
  if (parsed.ec == std::errc() && parsed.ptr == end) return number;
  return value;
}

void addJson(Json& object, const NumberForm& form) {
  object["dtype"] = nameOf(form.dtype);
  object["scale"] = form.scale.of(1);
  if (!form.unit.empty()) object["unit"] = form.unit;
}

Json checksJson(const std::vector<Verdict>& verdicts) {
  Json checks = Json::array();
  for (const Verdict& verdict : verdicts) {
    checks.push_back({{"check", verdict.name},
                      {"ok", verdict.ok()},
                      {"detail", verdict.detail},
                      {"faults", verdict.faults.kept()},
                      {"fault_count", verdict.faults.count()},
                      {"warnings", verdict.warnings.kept()},
                      {"warning_count", verdict.warnings.count()}});
  }
  return checks;
}

Json factsJson(const FileFacts& facts) {
  return {{"database_type", facts.type},
          {"description", descriptionJson(facts.description)},
          {"engine", engineJson(facts.engine)},
          {"tables", tablesJson(facts.tables)},
          {"screens", screensJson(facts.screens)}};
}

Json differenceJson(const Difference& difference) {
  Json json{{"item", difference.item}};
  json.update(placeJson(difference.place));
  json.update(std::visit(DifferenceMembers(), difference.what));
  return json;
}

}  // namespace tovrdb
