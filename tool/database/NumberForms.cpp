#include "tool/database/NumberForms.h"

#include <fmt/core.h>

#include <stdexcept>

#include "tool/database/SqlQuery.h"
#include "tool/database/Tables.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

std::string named(const StoredArea& area) { return fmt::format("area {} ({})", area.id, toText(area)); }

std::string storedVersion(Session& session, std::int64_t blockId) {
  std::string version;
  visitRows(session.connection(), fmt::format("select version from {} where id = {}", kBlockTable, blockId),
            [&] { version = columnText(session.connection(), 0); });
  return version;
}

void writeVersion(Session& session, std::int64_t blockId, const std::string& version) {
  tovr::IDBOperate& connection = session.connection();
  const std::string sql = fmt::format("update {} set version = ? where id = {}", kBlockTable, blockId);
  requireEngine(connection, connection.prepare_v2(sql.c_str(), static_cast<int>(sql.size())));
  connection.bind_text(1, version.data(), static_cast<int>(version.size()), nullptr);
  connection.step();
  requireEngine(connection, connection.finalize());
}

void requireFit(const Dtype& dtype, std::int32_t cellBytes) {
  if (static_cast<std::size_t>(cellBytes) % dtype.itemSize == 0) return;
  throw ToolError(kUsage, "--dtype {}: a cell of {} bytes is not a whole number of these", dtypeName(dtype), cellBytes);
}

FormOptions withType(const FormToKeep& what, bool unasked) {
  FormOptions options = what.given;
  if (options.dtype && what.ofArray && options.dtype->descr != what.ofArray->descr) {
    throw ToolError(kUsage, "--dtype {}: the array is of {}", dtypeName(*options.dtype), dtypeName(*what.ofArray));
  }
  if (!options.dtype && (options.isGiven() || unasked)) options.dtype = what.ofArray;
  return options;
}

}  // namespace

std::optional<NumberForm> keptForm(const StoredArea& area) { return splitVersion(area.version, area.cellBytes).form; }

std::optional<NumberForm> formOf(const std::vector<StoredArea>& areas, const FormOptions& options) {
  std::optional<NumberForm> common;
  for (const StoredArea& area : areas) {
    const std::optional<NumberForm> form = chosenForm(options, keptForm(area));
    if (!form) return std::nullopt;
    if (common && !(*common == *form)) {
      throw ToolError(kUsage,
                      "the numbers of {} are {}, those of {} {}: read them apart, or say how with --dtype, "
                      "--scale and --unit",
                      named(areas.front()), toText(*common), named(area), toText(*form));
    }
    common = form;
  }
  return common;
}

NumberForm requireForm(const std::vector<StoredArea>& areas, const FormOptions& options) {
  if (const auto form = formOf(areas, options)) return *form;
  for (const StoredArea& area : areas) {
    if (keptForm(area)) continue;
    throw ToolError(kUsage,
                    "nothing tells the type of the numbers in {}, whose cells have {} bytes: say it with --dtype",
                    named(area), area.cellBytes);
  }
  throw ToolError(kUsage, "say the type of the numbers with --dtype");
}

void keepForm(Session& session, std::int64_t blockId, std::int32_t cellBytes, const FormToKeep& what) {
  const std::string stored = storedVersion(session, blockId);
  const VersionText old = splitVersion(stored, cellBytes);
  const std::string& text = what.newText ? what.text : old.text;
  const bool ours = text.empty() || old.text != stored;
  const FormOptions options = withType(what, ours);
  if (options.dtype) requireFit(*options.dtype, cellBytes);
  const std::optional<NumberForm> form = chosenForm(options, old.form);
  if (!form && options.isGiven()) throw ToolError(kUsage, "--scale and --unit go with --dtype");
  try {
    const std::string version = form ? joinVersion(text, *form, cellBytes) : text;
    if (version != stored) writeVersion(session, blockId, version);
  } catch (const std::invalid_argument& error) {
    throw ToolError(kUsage, error.what());
  }
}

void requireKeptForm(const StoredArea& area, const FormToKeep& what) {
  const auto kept = keptForm(area);
  const auto given = chosenForm(withType(what, true), kept);
  if (!kept || !given || *given == *kept) return;
  throw ToolError(kUsage, "the numbers of {} are {}, those of the patch {}; nothing was stored", named(area),
                  toText(*kept), toText(*given));
}

}  // namespace tovrtool
