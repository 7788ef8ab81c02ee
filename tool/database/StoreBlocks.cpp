#include "tool/database/StoreBlocks.h"

#include <fmt/core.h>

#include <map>
#include <utility>

#include "tool/database/AreaPatch.h"
#include "tool/database/BlockRows.h"
#include "tool/database/NumberForms.h"
#include "tool/database/StoreWords.h"

namespace tovrtool {
namespace {

StoredPlaces placesOf(Session& session) {
  return {session.manager().getDBType(), storedScreens(session), storedAreas(session)};
}

// The version texts that the blocks of a plan are to have; of one that is patched nothing changes.
std::vector<std::string> versionsOf(const StorePlan& plan, const StoredPlaces& stored,
                                    const std::vector<WantedBlock>& wanted) {
  std::vector<std::string> versions;
  for (const StoreStep& step : plan.steps) {
    const WantedBlock& block = wanted[step.block];
    try {
      if (step.kind == StoreStep::Kind::kPatch) requireKeptForm(stored.areas[step.area], block.text);
      const std::string old = step.kind == StoreStep::Kind::kAdd ? "" : stored.areas[step.area].version;
      versions.push_back(step.kind == StoreStep::Kind::kPatch ? old : versionToKeep(old, block.cellBytes, block.text));
    } catch (const ToolError& error) {
      if (block.name.empty()) throw;
      throw about(block.name, error);
    }
  }
  return versions;
}

// What is to be done, and the texts for it. Throws ToolError where there is anything against it.
struct Decision {
  Decision(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules)
      : plan(planStore(stored, wanted, rules)) {
    requireNoObjections(plan);
    versions = versionsOf(plan, stored, wanted);
  }

  StorePlan plan;
  std::vector<std::string> versions;
};

class Execution {
 public:
  Execution(Session& session, const StoredPlaces& stored, const std::vector<WantedBlock>& wanted,
            const std::vector<std::string>& versions, const BlockLoader& load)
      : session_(session), stored_(stored), wanted_(wanted), versions_(versions), load_(load) {}

  std::int64_t run(const StoreStep& step) {
    std::vector<StoredArea> removed;
    for (const std::size_t index : step.removed) removed.push_back(stored_.areas[index]);
    deleteAreaRows(session_, removed);
    const WantedBlock& wanted = wanted_[step.block];
    const StoredArea* area = step.kind == StoreStep::Kind::kAdd ? nullptr : &stored_.areas[step.area];
    switch (step.kind) {
      case StoreStep::Kind::kPatch:
        patches_[step.area].push_back({wanted.area.rect, [this, block = step.block] { return loaded(block); }});
        return area->blockId;
      case StoreStep::Kind::kRewrite:
        rewriteAreaRows(session_, *area, rowOf(step.screenId, step.block), loaded(step.block));
        return area->blockId;
      case StoreStep::Kind::kAdd:
        break;
    }
    const CellBlock block = loaded(step.block);
    return addAreaRows(session_, rowOf(screenOf(step), step.block), block).block;
  }

  // The screen's rectangle is the library's to decide.
  std::int64_t update(const StoreStep& step) {
    const WantedBlock& wanted = wanted_[step.block];
    const CellBlock block = loaded(step.block);
    auto record = session_.host().makeRecord<tovr::CoefData>();
    record->coeftype = wanted.area.type;
    record->screenname = wanted.area.screen;
    setRect(*record, wanted.area.rect);
    record->areaid = wanted.text.number;
    record->coefBuffer.databitwidth = block.cellBytes;
    record->coefBuffer.data = block.bytes.get();
    record->coefBuffer.datasize = static_cast<std::int32_t>(block.size());
    session_.require(session_.manager().updateData(record.get()), "asked for " + toText(wanted.area.rect));
    rewriteVersion(session_, stored_.areas[step.area], versions_[step.block]);
    return record->coefid;
  }

  // Each block that is patched is read and written once.
  void patch() {
    for (const auto& [area, patches] : patches_) patchArea(session_, stored_.areas[area], patches);
  }

 private:
  // A file may have changed since it was looked at.
  CellBlock loaded(std::size_t index) {
    CellBlock block = load_(index);
    const WantedBlock& wanted = wanted_[index];
    if (block.rect == wanted.area.rect && block.cellBytes == wanted.cellBytes) return block;
    throw ToolError(kFileProblem, "{} changed while it was read; nothing was stored", wanted.name);
  }

  AreaRow rowOf(std::int64_t screenId, std::size_t block) const {
    return {screenId, wanted_[block].area.type, wanted_[block].text.number, versions_[block]};
  }

  std::int64_t screenOf(const StoreStep& step) {
    if (step.screenId != 0) return step.screenId;
    const AreaName& area = wanted_[step.block].area;
    const auto [screen, added] = addedScreens_.emplace(area.screen, 0);
    if (added) screen->second = addScreenFor(session_, area);
    return screen->second;
  }

  Session& session_;
  const StoredPlaces& stored_;
  const std::vector<WantedBlock>& wanted_;
  const std::vector<std::string>& versions_;
  const BlockLoader& load_;
  std::map<std::size_t, std::vector<Patch>> patches_;  // by the stored area
  std::map<std::string, std::int64_t> addedScreens_;
};

}  // namespace

StoreReport storeBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                        const BlockLoader& load) {
  Transaction transaction(session);
  const StoredPlaces stored = placesOf(session);
  const Decision decision(stored, wanted, rules);
  StoreReport report;
  report.notices = noticesOf(decision.plan, stored, wanted);
  Execution execution(session, stored, wanted, decision.versions, load);
  for (const StoreStep& step : decision.plan.steps) {
    report.blockKeys.push_back(rules.mode == StoreMode::kUpdate ? execution.update(step) : execution.run(step));
  }
  execution.patch();
  transaction.commit();
  return report;
}

void requireStorable(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules) {
  const Decision decision(placesOf(session), wanted, rules);
}

}  // namespace tovrtool
