#include "client/storing/StoreBlocks.h"

#include <fmt/core.h>

#include <map>
#include <set>
#include <string>
#include <utility>

#include "client/base/Error.h"
#include "client/contents/AreaNames.h"

namespace tovrdb {
namespace {

// What another host wrote beside the cells and a new block does not have.
std::string lostText(const StoredArea& area) {
  std::string text;
  if (area.number != BlockText().number) text += fmt::format("; its area number {} was lost", area.number);
  if (!area.layerList.empty()) text += "; its list of layers was lost";
  return text;
}

std::string formText(const StoreStep& step) {
  if (step.keptForm.empty()) return {};
  return fmt::format("; its numbers were {} and are now {}", step.keptForm, step.wantedForm);
}

std::vector<std::string> noticesOf(const StorePlan& plan, const StoredPlaces& stored,
                                   const std::vector<WantedBlock>& wanted) {
  std::vector<std::string> notices;
  std::set<std::string> added;
  std::map<std::size_t, std::vector<Rect>> patched;
  for (const StoreStep& step : plan.steps) {
    const AreaName& place = wanted[step.block].area;
    if (step.screenId == 0 && added.insert(place.screen).second) {
      notices.push_back(fmt::format("note: there was no screen {}; it was added with this rectangle ({})", place.screen,
                                    toText(place.rect)));
    }
    for (const std::size_t gone : step.removed) {
      notices.push_back(fmt::format("removed {}, {}", areaText(stored.areas[gone]), blockText(stored.areas[gone])));
    }
    if (step.movesScreen) notices.push_back(fmt::format("the screen {} is now {}", place.screen, toText(place.rect)));
    if (step.kind == StoreStep::Kind::kAdd) continue;
    const StoredArea& area = stored.areas[step.area];
    if (step.kind == StoreStep::Kind::kRewrite) {
      notices.push_back(
          fmt::format("replaced {}, in {}{}{}", blockText(area), areaText(area), lostText(area), formText(step)));
      continue;
    }
    patched[step.area].push_back(place.rect);
    if (step.keptForm.empty()) continue;
    notices.push_back(
        fmt::format("note: {} keeps its numbers as {}; the patch {}, which was {}, is now read the same way",
                    areaText(area), step.keptForm, toText(place.rect), step.wantedForm));
  }
  for (const auto& [area, rects] : patched) {
    const std::string what = rects.size() == 1 ? toText(rects[0]) : fmt::format("{} rectangles", rects.size());
    notices.push_back(fmt::format("patched {} in {}", what, areaText(stored.areas[area])));
  }
  return notices;
}

// Turns the steps of a plan into changes.
class ChangeMaker {
 public:
  ChangeMaker(Session& session, const StoredPlaces& stored, const std::vector<WantedBlock>& wanted,
              const BlockLoader& load)
      : session_(session), stored_(stored), wanted_(wanted), load_(load) {}

  std::vector<Change> make(const StorePlan& plan, bool byLibrary) {
    for (const StoreStep& step : plan.steps) {
      remove(step);
      if (step.kind == StoreStep::Kind::kPatch) {
        patches_[step.area].push_back({wanted_[step.block].area.rect, cellsOf(step.block)});
      } else if (step.kind == StoreStep::Kind::kAdd) {
        addScreen(step);
        changes_.emplace_back(AddBlock{contentOf(step)});
      } else if (byLibrary) {
        changes_.emplace_back(UpdateBlock{stored_.areas[step.area], contentOf(step)});
      } else {
        changes_.emplace_back(RewriteBlock{stored_.areas[step.area], contentOf(step)});
      }
    }
    for (auto& [area, patches] : patches_) {  // each block is read and written once
      changes_.emplace_back(PatchBlock{stored_.areas[area], std::move(patches)});
    }
    return std::move(changes_);
  }

 private:
  void remove(const StoreStep& step) {
    if (step.removed.empty()) return;
    DeleteAreas change;
    for (const std::size_t index : step.removed) change.areas.push_back(stored_.areas[index]);
    changes_.emplace_back(std::move(change));
  }

  // The library adds a screen for the first block that names it.
  void addScreen(const StoreStep& step) {
    const AreaName& place = wanted_[step.block].area;
    if (step.screenId != 0 || !addedScreens_.insert(place.screen).second) return;
    const std::int64_t database =
        queryNumber(session_.connection(), "select seq from sqlite_sequence where name = 'DB_Info'");
    changes_.emplace_back(AddScreen{database, place.screen, place.rect});
  }

  BlockContent contentOf(const StoreStep& step) const {
    const WantedBlock& block = wanted_[step.block];
    return {block.area, step.screenId, block.text.number, step.version, cellsOf(step.block)};
  }

  // A file may have changed since it was looked at.
  CellSupply cellsOf(std::size_t index) const {
    return [&load = load_, &wanted = wanted_[index], index] {
      CellBlock block = load(index);
      if (block.rect == wanted.area.rect && block.cellBytes == wanted.cellBytes) return block;
      throw Error(kFileProblem, "{} changed while it was read; nothing was stored", wanted.name);
    };
  }

  Session& session_;
  const StoredPlaces& stored_;
  const std::vector<WantedBlock>& wanted_;
  const BlockLoader& load_;
  std::vector<Change> changes_;
  std::map<std::size_t, std::vector<Patch>> patches_;  // by the stored area
  std::set<std::string> addedScreens_;
};

}  // namespace

ChangePlan planBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                      const BlockLoader& load) {
  const StoredPlaces stored{session.manager().getDBType(), storedScreens(session), storedAreas(session)};
  const StorePlan plan = planStore(stored, wanted, rules);
  requireNone(plan.objections, "nothing was stored");
  ChangeMaker maker(session, stored, wanted, load);
  return {maker.make(plan, rules.mode == StoreMode::kUpdate), noticesOf(plan, stored, wanted)};
}

Applied storeBlocks(Session& session, const std::vector<WantedBlock>& wanted, const StoreRules& rules,
                    const BlockLoader& load) {
  return applyChanges(session, [&](Session& file) { return planBlocks(file, wanted, rules, load); });
}

}  // namespace tovrdb
