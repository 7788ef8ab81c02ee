#include "client/reading/NumberForms.h"

#include <fmt/core.h>

#include <stdexcept>

#include "client/base/Error.h"
#include "client/contents/AreaNames.h"

namespace tovrdb {
namespace {

void requireFit(NumberType dtype, std::int32_t cellBytes) {
  if (static_cast<std::size_t>(cellBytes) % traitsOf(dtype).bytes == 0) return;
  throw Error(kInvalid, "{}: a cell of {} bytes is not a whole number of these", nameOf(dtype), cellBytes);
}

FormOptions withType(const BlockText& put, bool unasked) {
  FormOptions options = put.form;
  if (options.dtype && put.dtype && options.dtype != put.dtype) {
    throw Error(kInvalid, "the array has {} values, not {}", nameOf(*put.dtype), nameOf(*options.dtype));
  }
  if (!options.dtype && (options.isGiven() || unasked)) options.dtype = put.dtype;
  return options;
}

}  // namespace

std::optional<NumberForm> formOf(const std::vector<StoredArea>& areas, const FormOptions& options) {
  std::optional<NumberForm> common;
  for (const StoredArea& area : areas) {
    const std::optional<NumberForm> form = chosenForm(options, keptForm(area));
    if (!form) return std::nullopt;
    if (common && !(*common == *form)) {
      throw Error(kInvalid, "the numbers of {} are {}, those of {} {}", nameOf(areas.front()), toText(*common),
                  nameOf(area), toText(*form))
          .suggest(Remedy::kReadApart)
          .suggest(Remedy::kGiveNumberForm);
    }
    common = form;
  }
  return common;
}

NumberForm requireForm(const std::vector<StoredArea>& areas, const FormOptions& options) {
  if (const auto form = formOf(areas, options)) return *form;
  for (const StoredArea& area : areas) {
    if (keptForm(area)) continue;
    throw Error(kInvalid, "nothing tells the type of the numbers in {}, whose cells have {} bytes", nameOf(area),
                area.cellBytes)
        .suggest(Remedy::kGiveNumberType);
  }
  throw Error(kInvalid, "the type of the numbers is not known").suggest(Remedy::kGiveNumberType);
}

std::string versionToKeep(const std::string& stored, std::int32_t cellBytes, const BlockText& put) {
  const VersionText old = splitVersion(stored, cellBytes);
  const VersionText said = splitVersion(put.version, cellBytes);  // may be copied from another block
  const std::string& text = put.version.empty() ? old.text : said.text;
  const bool foreign = put.version.empty() && !old.text.empty() && old.text == stored;
  const FormOptions options = withType(put, !foreign);
  if (options.dtype) requireFit(*options.dtype, cellBytes);
  const std::optional<NumberForm> form = chosenForm(options, said.form ? said.form : old.form);
  if (!form && options.isGiven())
    throw Error(kInvalid, "a scale or a unit was given without a number type").suggest(Remedy::kGiveNumberType);
  if (!form && put.version.empty()) return text;  // of any length, since another program wrote it
  try {
    return joinVersion(text, form, cellBytes);
  } catch (const std::invalid_argument& error) {
    throw Error(kInvalid, error.what());
  }
}

std::optional<NumberForm> formOfPatch(const StoredArea& area, const BlockText& patch) {
  return chosenForm(withType(patch, true), keptForm(area));
}

bool losesForm(const NumberForm& kept, const std::optional<NumberForm>& wanted) {
  if (!wanted || wanted->dtype != kept.dtype) return true;
  if (kept.isScaled() && wanted->scale.of(1) != kept.scale.of(1)) return true;
  return !kept.unit.empty() && wanted->unit != kept.unit;
}

}  // namespace tovrdb
