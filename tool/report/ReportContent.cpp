#include "tool/report/ReportContent.h"

#include <fmt/chrono.h>
#include <fmt/core.h>

#include <ctime>
#include <stdexcept>
#include <utility>

#include "client/base/Error.h"
#include "client/base/Listener.h"
#include "client/disk/Platform.h"
#include "client/session/SqlQuery.h"
#include "tool/report/ReportLayer.h"

namespace tovrdb::tool {
namespace {

constexpr double kRoom = 23.6e6;  // characters of numbers in a page of at most 25 MB
constexpr double kMostCabinets = 50000;

// Leaves out the parts of a damaged file that cannot be read; the verdicts say why.
template <class Action>
void readIfSound(Session& session, ReportContent& content, const std::string& what, Action action) {
  Verdict verdict;
  verdict.name = what;
  try {
    return action();
  } catch (const Error& error) {
    if (isNoFault(error)) throw;
    verdict.faults.add(error.what());
  } catch (const std::logic_error&) {  // thrown by the library for a text that is not a number
    verdict.faults.add("a row holds text in a column of numbers");
  }
  content.verdicts.push_back(std::move(verdict));
  beginAgain(session);
}

std::vector<Rect> cabinetsOf(const CellSet& set, const Rect& rect, const CellPair& size) {
  const std::int64_t across = columnsOf(rect) / size.x + 2;
  const std::int64_t down = rowsOf(rect) / size.y + 2;
  const double count = static_cast<double>(across) * static_cast<double>(down);
  if (count > kMostCabinets) {
    throw Error(kInvalid, "cabinets of {} x {} cells would be {:.0f} of them: give their real size", size.x, size.y,
                count);
  }
  return cabinetsIn(rect, {set.screenRect.left, set.screenRect.top}, size);
}

// The parts of which the page shows statistics: cabinets, or areas if there are several.
void addParts(const ReportContent& content, const CellSet& set, LayerSource& source) {
  if (content.cabinet) {
    source.parts = cabinetsOf(set, source.rect, *content.cabinet);
    source.partName = "cabinets";
    return;
  }
  if (set.areas.size() < 2) return;
  for (const std::size_t index : set.areas) {
    const auto part = common(content.areas[index].area.rect, source.rect);
    if (part && content.areas[index].fault.empty()) source.parts.push_back(*part);
  }
  if (!source.parts.empty()) source.partName = "areas";
}

double valuesOf(const CellSet& set, const SetChanges& changes) {
  double cells = static_cast<double>(set.cells());
  if (changes.any())
    cells += static_cast<double>(columnsOf(changes.rect())) * static_cast<double>(rowsOf(changes.rect()));
  return cells * static_cast<double>(set.components());
}

std::int64_t blockFor(double values) {
  std::int64_t block = 1;
  while (leastCharacters(values, block) > kRoom) ++block;
  return block;
}

Json valuesLayer(Session& session, ReportContent& content, const CellSet& set, const LayerRoom& room) {
  const GridCells grid = readSet(session, set, content.areas);
  if (!grid.any()) return nullptr;
  LayerSource source{set.rect, set.form, set.components(), {}, {}, false, {}, {}};
  source.stored = [&](std::size_t component) { return storedNumbers(grid, set.form.dtype, component); };
  source.counted = [&](std::size_t) { return grid.present; };
  addParts(content, set, source);
  return layerJson(source, room);
}

Json changesLayer(const ReportContent& content, const CellSet& set, const SetChanges& changes, const LayerRoom& room) {
  if (!changes.any()) return nullptr;
  LayerSource source{changes.rect(), set.form, set.components(), {}, {}, true, {}, {}};
  source.stored = [&](std::size_t component) { return changes.differences(component); };
  source.counted = [&](std::size_t component) { return changes.changed(component); };
  addParts(content, set, source);
  return layerJson(source, room);
}

// The sets and what changed in them, reduced as far as needed to fit into a page.
void addSets(Session& session, ReportContent& content, const FormOptions& form, const FileChanges& changes) {
  double values = 0;
  std::vector<SetChanges> changed;
  for (CellSet& set : planSets(content.areas, form)) {
    changed.emplace_back(set, changes.cells);
    values += valuesOf(set, changed.back());
    content.sets.push_back({std::move(set), nullptr, nullptr, 0});
  }
  content.block = blockFor(values);
  for (std::size_t i = 0; i < content.sets.size(); ++i) {
    ReportSet& each = content.sets[i];
    const auto room = [&](double share) { return LayerRoom{content.block, kRoom * share / values}; };
    const double all = valuesOf(each.set, changed[i]);
    const double own = static_cast<double>(each.set.cells()) * static_cast<double>(each.set.components());
    each.values = valuesLayer(session, content, each.set, room(own));
    each.difference = changesLayer(content, each.set, changed[i], room(all - own));
    each.changedCells = changed[i].count();
  }
}

void addFacts(Session& session, ReportContent& content) {
  readIfSound(session, content, "facts", [&] { content.facts = factsOf(session); });
  if (!content.facts.screens.empty()) return;
  readIfSound(session, content, "list of screens", [&] {
    content.facts.type = session.manager().getDBType();
    for (StoredScreen& screen : readableScreens(session)) content.facts.screens.push_back({std::move(screen), 0});
  });
}

// If damage ends the comparison, the page says so.
FileChanges changesSince(const Access& access, const ReportQuestion& question, ReportContent& content) {
  try {
    return changesBetween(access, *question.against, question.file, question.form);
  } catch (const Error& error) {
    const bool opened = error.kind() != kKeyProblem && error.kind() != kFileProblem;
    if (isNoFault(error) || !opened || error.status() == 0) throw;
    content.againstFault = error.what();
    return {};
  }
}

// All at once, or one by one if that fails, so that as many as possible are shown.
void addAreas(Session& session, ReportContent& content) {
  try {
    for (StoredArea& area : storedAreas(session)) {
      ReportArea& each = content.areas.emplace_back();
      each.fault = area.fault;
      each.area = std::move(area);
    }
    return;
  } catch (const Error& error) {
    if (isNoFault(error)) throw;
    beginAgain(session);
  }
  readIfSound(session, content, "list of areas", [&] {
    for (const Placement& placement : placements(session)) {
      ReportArea& each = content.areas.emplace_back();
      static_cast<Placement&>(each.area) = placement;
      try {
        each.area = storedArea(session, placement);
      } catch (const Error& error) {
        if (isNoFault(error)) throw;
        each.fault = error.what();
        beginAgain(session);
      }
    }
  });
}

std::string now() { return fmt::format("{:%Y-%m-%d %H:%M} UTC", fmt::gmtime(std::time(nullptr))); }

}  // namespace

ReportContent buildReport(const Access& access, const ReportQuestion& question) {
  ReportContent content;
  content.file = fileNameOf(question.file.path);
  content.made = now();
  content.cabinet = question.cabinet;
  FileChanges changes;
  if (question.against) {
    content.against = fileNameOf(question.against->path);
    changes = changesSince(access, question, content);
    content.differences = std::move(changes.differences);
  }
  const auto schema = expectedSchema(access.plugin);
  Session session = Session::openExisting(access, question.file.path, question.file.key);
  Progress progress("report", bytesToCheck(session));
  content.verdicts.resize(1);
  content.verdicts[0].name = "opens with this key";
  for (Verdict& verdict : checkDatabase(session, schema, progress)) content.verdicts.push_back(std::move(verdict));
  addFacts(session, content);
  addAreas(session, content);
  addSets(session, content, question.form, changes);
  return content;
}

}  // namespace tovrdb::tool
