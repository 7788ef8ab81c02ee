#include "client/checks/JsonForms.h"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace tovrdb {

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

}  // namespace tovrdb
