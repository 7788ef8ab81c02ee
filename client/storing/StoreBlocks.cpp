#include "client/storing/StoreBlocks.h"

#include <fmt/core.h>

#include <map>
#include <utility>

#include "client/storing/AreaPatch.h"
#include "client/storing/BlockRows.h"
#include "client/storing/StoreWords.h"

namespace tovrdb {
namespace {

StoredPlaces placesOf(Session& session) {
  return {session.manager().getDBType(), storedScreens(session), storedAreas(session)};
}

// Throws Error if anything conflicts.
StorePlan decide(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules) {
  StorePlan plan = planStore(stored, wanted, rules);
  requireNone(plan.objections, "nothing was stored");
  return plan;
}

class Execution {
 public:
  Execution(Session& session, const StoredPlaces& stored, const std::vector<WantedBlock>& wanted,
            const BlockLoader& load)
      : session_(session), stored_(stored), wanted_(wanted), load_(load) {}

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
        rewriteAreaRows(session_, *area, rowOf(step.screenId, step), loaded(step.block));
        return area->blockId;
      case StoreStep::Kind::kAdd:
        break;
    }
    const CellBlock block = loaded(step.block);
    return addAreaRows(session_, rowOf(screenOf(step), step), block).block;
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
    rewriteVersion(session_, stored_.areas[step.area], step.version);
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
    throw Error(kFileProblem, "{} changed while it was read; nothing was stored", wanted.name);
  }

  AreaRow rowOf(std::int64_t screenId, const StoreStep& step) const {
    const WantedBlock& block = wanted_[step.block];
    return {screenId, block.area.type, block.text.number, step.version};
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
  const BlockLoader& load_;
  std::map<std::size_t, std::vector<Patch>> patches_;  // by the stored area
  std::map<std::string, std::int64_t> addedScreens_;
};

}  // namespace

StoreReport storeBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                        const BlockLoader& load) {
  Transaction transaction(session);
  const StoredPlaces stored = placesOf(session);
  const StorePlan plan = decide(stored, wanted, rules);
  StoreReport report;
  report.notices = noticesOf(plan, stored, wanted);
  Execution execution(session, stored, wanted, load);
  for (const StoreStep& step : plan.steps) {
    report.blockKeys.push_back(rules.mode == StoreMode::kUpdate ? execution.update(step) : execution.run(step));
  }
  execution.patch();
  transaction.commit();
  return report;
}

void requireStorable(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules) {
  decide(placesOf(session), wanted, rules);
}

}  // namespace tovrdb
