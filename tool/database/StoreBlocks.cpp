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
        rewriteAreaRows(session_, *area, step.screenId, wanted.text, loaded(step.block));
        return area->blockId;
      case StoreStep::Kind::kAdd:
        break;
    }
    const CellBlock block = loaded(step.block);
    return addAreaRows(session_, screenOf(step), wanted.area.type, wanted.text, block).block;
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

// The screen's rectangle is the library's to decide.
std::int64_t updateByLibrary(Session& session, const WantedBlock& wanted, const CellBlock& block) {
  auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = wanted.area.type;
  record->screenname = wanted.area.screen;
  setRect(*record, wanted.area.rect);
  record->areaid = wanted.text.number;
  record->version = wanted.text.version;
  record->coefBuffer.databitwidth = block.cellBytes;
  record->coefBuffer.data = block.bytes.get();
  record->coefBuffer.datasize = static_cast<std::int32_t>(block.size());
  session.require(session.manager().updateData(record.get()), "asked for " + toText(wanted.area.rect));
  return record->coefid;
}

}  // namespace

StoreReport storeBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                        const BlockLoader& load) {
  Transaction transaction(session);
  const StoredPlaces stored = placesOf(session);
  const StorePlan plan = planStore(stored, wanted, rules);
  requireNoObjections(plan);
  StoreReport report;
  report.notices = noticesOf(plan, stored, wanted);
  Execution execution(session, stored, wanted, load);
  for (const StoreStep& step : plan.steps) {
    const WantedBlock& block = wanted[step.block];
    report.blockKeys.push_back(rules.mode == StoreMode::kUpdate ? updateByLibrary(session, block, load(step.block))
                                                                : execution.run(step));
    const FormToKeep form{block.text.form, block.text.dtype, !block.text.version.empty(), block.text.version};
    if (step.kind == StoreStep::Kind::kPatch) {
      requireKeptForm(stored.areas[step.area], form);
    } else {
      keepForm(session, report.blockKeys.back(), block.cellBytes, form);
    }
  }
  execution.patch();
  transaction.commit();
  return report;
}

void requireStorable(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules) {
  requireNoObjections(planStore(placesOf(session), wanted, rules));
}

}  // namespace tovrtool
