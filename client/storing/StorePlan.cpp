#include "client/storing/StorePlan.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "client/base/Text.h"
#include "client/contents/AreaNames.h"
#include "client/reading/NumberForms.h"
#include "client/session/SqlQuery.h"
#include "client/storing/StoreConflicts.h"
#include "client/storing/StoredLayout.h"
#include "manager/DataRecords.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

class Planner {
 public:
  Planner(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules)
      : stored_(stored), wanted_(wanted), rules_(rules), layout_(stored), conflicts_(stored, wanted, rules) {}

  StorePlan plan() {
    for (std::size_t block = 0; block < wanted_.size(); ++block) {
      step_ = {};
      step_.block = block;
      conflicts_.begin(block);
      decide();
      plan_.steps.push_back(std::move(step_));
    }
    plan_.objections = conflicts_.take();
    return std::move(plan_);
  }

 private:
  bool byName() const { return stored_.databaseType == 1; }
  std::int32_t type() const { return block().area.type; }
  const WantedBlock& block() const { return wanted_[step_.block]; }
  const Rect& rect() const { return block().area.rect; }

  void decide() {
    try {
      requireSuits(block().area, stored_.databaseType);
    } catch (const Error& error) {
      if (block().name.empty()) throw;
      throw error.about(block().name);
    }
    if (type() == tovr::kDataTypeNotGiven) {
      return conflicts_.refuse(
          tovr::kTypeNotGiven,
          fmt::format("the coefficient type {} means \"not given\" and cannot be stored; choose another", type()));
    }
    conflicts_.checkBatch();
    const StoredScreen* screen = findScreen();
    const bool adds =
        screen == nullptr && byName() && rules_.mode != StoreMode::kPatch && rules_.mode != StoreMode::kUpdate;
    if (screen == nullptr && !adds) return refuseScreen();
    step_.screenId = adds ? 0 : screen->id;
    if (rules_.mode == StoreMode::kPatch) return decidePatch();
    if (rules_.mode == StoreMode::kUpdate) return decideUpdate(*screen);
    if (adds) conflicts_.checkNewName();
    if (byName()) conflicts_.checkInside(screen);
    if (!adds) decideStore();
    if (step_.kind == StoreStep::Kind::kAdd) keepVersion("");
  }

  const StoredScreen* findScreen() const {
    if (byName()) return layout_.screenNamed(block().area.screen);
    return rules_.mode == StoreMode::kUpdate ? layout_.screenExactly(rect()) : layout_.screenHolding(rect());
  }

  void refuseScreen() {
    if (byName()) {
      return conflicts_.refuse(tovr::kNoSuchScreenName,
                               fmt::format("there is no screen '{}'; {}", block().area.screen, layout_.screensText()));
    }
    if (rules_.mode == StoreMode::kPatch) return refusePatch();
    const char* const text = rules_.mode == StoreMode::kUpdate
                                 ? "no screen has exactly the rectangle {}, as an update needs; {}"
                                 : "no screen holds the rectangle {}; {}";
    conflicts_.refuse(tovr::kNoScreenForRectangle,
                      fmt::format(fmt::runtime(text), toText(rect()), layout_.screensText()));
  }

  void refusePatch() {
    conflicts_.refuse(tovr::kNoMatchingArea,
                      fmt::format("no area of type {} holds the whole patch, {}; {}", type(), toText(rect()),
                                  layout_.touchedText(type(), rect(), byName() ? step_.screenId : 0)));
  }

  void decidePatch() {
    for (const std::size_t index : overlapping()) {
      const StoredArea& area = stored_.areas[index];
      if (!holds(area.rect, rect())) continue;
      step_.kind = StoreStep::Kind::kPatch;
      step_.area = index;
      if (!area.fault.empty()) {
        conflicts_.refuseDamaged(area);
      } else if (area.cellBytes != block().cellBytes) {
        conflicts_.object({}, fmt::format("{} lies in {}, which has {} bytes per cell; this block has {}",
                                          placeText(block().area), areaText(area), area.cellBytes, block().cellBytes));
      } else {
        keepFormOfPatch(area);
      }
      return;
    }
    refusePatch();
  }

  void keepFormOfPatch(const StoredArea& area) {
    step_.version = area.version;
    const auto kept = keptForm(area);
    std::optional<NumberForm> wanted;
    conflicts_.orObject([&] { wanted = formOfPatch(area, block().text); });
    if (kept && wanted && !(*wanted == *kept)) changeForm(area, *kept, wanted, true);
  }

  bool keepVersion(const std::string& stored) {
    return conflicts_.orObject([&] { step_.version = versionToKeep(stored, block().cellBytes, block().text); });
  }

  void keepFormOf(const StoredArea& area) {
    const auto kept = keptForm(area);
    const auto wanted = splitVersion(step_.version, block().cellBytes).form;
    const bool sameWidth = area.cellBytes == block().cellBytes;
    if (kept && !(sameWidth && wanted && *wanted == *kept)) changeForm(area, *kept, wanted, losesForm(*kept, wanted));
  }

  // The cells of a stored area are read as other numbers than before.
  void changeForm(const StoredArea& area, const NumberForm& kept, const std::optional<NumberForm>& wanted, bool loses) {
    step_.keptForm = toText(kept, area.cellBytes);
    step_.wantedForm = wanted ? toText(*wanted, block().cellBytes) : "of no known type";
    if (loses) conflicts_.checkForm(area, step_.keptForm, step_.wantedForm);
  }

  void decideUpdate(const StoredScreen& screen) {
    const auto found = layout_.firstOfType(step_.screenId, type());
    if (!found) {
      return conflicts_.refuse(tovr::kNoMatchingArea, fmt::format("the screen {} has no area of type {} to update; {}",
                                                                  screen.name, type(), layout_.areasText(type())));
    }
    rewrite(*found);
    step_.movesScreen = byName() && !(screen.rect == rect());
    if (step_.movesScreen) conflicts_.checkMove(screen, *found);
  }

  void decideStore() {
    const std::optional<std::size_t> same = takenOver();
    if (same) rewrite(*same);
    if (rules_.mode == StoreMode::kBeside) return;
    std::vector<std::string> met;
    bool inside = true;
    bool patchable = false;
    for (const std::size_t index : overlapping()) {
      const StoredArea& area = stored_.areas[index];
      const bool isInside = holds(rect(), area.rect);
      if (same && index == *same) continue;
      if (rules_.mode == StoreMode::kReplace && isInside) {
        step_.removed.push_back(index);
      } else if (!isAlreadyShadowed(same, index)) {
        met.push_back(fmt::format("{}: {}", areaText(area), answerBeside(index, same)));
        inside = inside && isInside;
        patchable = patchable || (holds(area.rect, rect()) && area.cellBytes == block().cellBytes);
      }
    }
    if (met.empty()) return;
    std::vector<Remedy> remedies;
    if (patchable) remedies.push_back(Remedy::kPatch);
    if (inside) remedies.push_back(Remedy::kReplace);
    if (!byName()) remedies.push_back(Remedy::kBeside);
    conflicts_.object(std::move(remedies),
                      fmt::format("{} overlaps {}", placeText(block().area), shortList(met, "; ")));
  }

  // Whether the area came after one of the block's own rectangle, which is rewritten and answers before it now.
  bool isAlreadyShadowed(const std::optional<std::size_t>& rewritten, std::size_t index) const {
    return rewritten && index > *rewritten && stored_.areas[*rewritten].rect == rect();
  }

  // The stored area that the library rewrites instead of adding one.
  std::optional<std::size_t> takenOver() const {
    if (byName()) return layout_.firstOfType(step_.screenId, type());
    if (!StoreConflicts::replaces(block())) return std::nullopt;
    for (const std::size_t index : overlapping()) {
      const StoredArea& area = stored_.areas[index];
      if (area.screenId == step_.screenId && area.rect == rect()) return index;
    }
    return std::nullopt;
  }

  void rewrite(std::size_t index) {
    step_.kind = StoreStep::Kind::kRewrite;
    step_.area = index;
    const StoredArea& area = stored_.areas[index];
    if (keepVersion(area.version)) keepFormOf(area);
    conflicts_.checkRewrite(area);
  }

  // Stored areas that the block would overlap; in databases of type 0 all screens lie in one plane.
  std::vector<std::size_t> overlapping() const {
    std::vector<std::size_t> found = layout_.overlapping(type(), rect());
    const bool one = byName() || rules_.mode == StoreMode::kPatch;
    found.erase(
        std::remove_if(found.begin(), found.end(),
                       [&](std::size_t index) { return one && stored_.areas[index].screenId != step_.screenId; }),
        found.end());
    return found;
  }

  // What would be read where the block and a stored area overlap. The library looks into the first screen that holds
  // the rectangle.
  std::string answerBeside(std::size_t index, const std::optional<std::size_t>& same) const {
    const Rect both = *common(stored_.areas[index].rect, rect());
    const StoredScreen* holder = byName() ? nullptr : layout_.screenHolding(both);
    const std::int64_t screen = byName() ? step_.screenId : holder != nullptr ? holder->id : 0;
    const auto answering = layout_.answering(screen, type(), both, same, rect());
    const bool ours = answering ? answering == same : screen == step_.screenId;
    return fmt::format("reading {} would {}", toText(both),
                       ours        ? "answer from this block"
                       : answering ? fmt::format("answer from area {}, which is older", stored_.areas[*answering].id)
                                   : "find nothing on its screen");
  }

  const StoredPlaces& stored_;
  const std::vector<WantedBlock>& wanted_;
  const StoreRules& rules_;
  StoredLayout layout_;
  StoreConflicts conflicts_;
  StorePlan plan_;
  StoreStep step_;
};

}  // namespace

StorePlan planStore(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules) {
  if (stored.databaseType != 0 && stored.databaseType != 1) {
    throw statusError(
        tovr::kTypeNotGiven,
        fmt::format("{}: the file does not say whether it finds screens by rectangle or by name", tovr::kTypeNotGiven))
        .suggest(Remedy::kCheckFile);
  }
  if (rules.mode == StoreMode::kBeside && stored.databaseType == 1) {
    throw Error(kInvalid, "a database of type 1 keeps one area of a type on a screen: nothing can be stored beside it");
  }
  return Planner(stored, wanted, rules).plan();
}

}  // namespace tovrdb
