#include "client/storing/StorePlan.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "client/base/Text.h"
#include "client/contents/AreaWords.h"
#include "client/reading/NumberForms.h"
#include "client/session/LibraryError.h"
#include "client/storing/PlaceIndex.h"
#include "manager/DataRecords.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

template <class Things>
std::string listedPlaces(const Things& things) {
  std::vector<std::string> texts;
  for (const auto& thing : things) texts.push_back(fmt::format("{} ({})", thing.first, toText(thing.second)));
  return shortList(texts);
}

class Planner {
 public:
  Planner(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules)
      : stored_(stored),
        wanted_(wanted),
        rules_(rules),
        areas_(stored.areas,
               [](const StoredArea& area) {
                 return PlaceIndex::Place{area.type, area.rect};
               }),
        blocks_(wanted, [](const WantedBlock& block) {
          return PlaceIndex::Place{block.area.type, block.area.rect};
        }) {
    for (std::size_t i = 0; i < stored.areas.size(); ++i) {
      firstOfType_.emplace(std::pair(stored.areas[i].screenId, stored.areas[i].type), i);
    }
    for (const StoredScreen& screen : stored.screens) {
      byName_.emplace(screen.name, &screen);
      names_.add(screen.name);
    }
  }

  StorePlan plan() {
    for (std::size_t block = 0; block < wanted_.size(); ++block) {
      step_ = {};
      step_.block = block;
      decide();
      plan_.steps.push_back(std::move(step_));
    }
    return std::move(plan_);
  }

 private:
  bool byName() const { return stored_.databaseType == 1; }
  const WantedBlock& block() const { return wanted_[step_.block]; }
  const Rect& rect() const { return block().area.rect; }

  void object(std::vector<Remedy> remedies, const std::string& text) {
    plan_.objections.push_back({kConflict, 0, std::move(remedies), subject(), named(text)});
  }
  Subject subject() const { return {block().name, block().area.screen, std::nullopt, rect()}; }
  // As the library would, in words of our own.
  void refuse(int status, const std::string& text) {
    plan_.objections.push_back({kRefused, status, {}, subject(), named(fmt::format("{}: {}", status, text))});
  }
  std::string named(const std::string& text) const { return block().name.empty() ? text : block().name + ": " + text; }

  void decide() {
    try {
      requireSuits(block().area, stored_.databaseType);
    } catch (const Error& error) {
      if (block().name.empty()) throw;
      throw error.about(block().name);
    }
    if (block().area.type == tovr::kDataTypeNotGiven) {
      return refuse(tovr::kTypeNotGiven,
                    fmt::format("the coefficient type {} means \"not given\" and cannot be stored: "
                                "choose another",
                                tovr::kDataTypeNotGiven));
    }
    objectToTwice();
    const StoredScreen* screen = findScreen();
    const bool adds =
        screen == nullptr && byName() && rules_.mode != StoreMode::kPatch && rules_.mode != StoreMode::kUpdate;
    if (screen == nullptr && !adds) return refuseScreen();
    step_.screenId = adds ? 0 : screen->id;
    if (rules_.mode == StoreMode::kPatch) return decidePatch();
    if (rules_.mode == StoreMode::kUpdate) return decideUpdate(*screen);
    if (adds) objectToName();
    if (byName()) objectToOutside(screen);
    if (!adds) decideStore();
    if (step_.kind == StoreStep::Kind::kAdd) keepVersion("");
  }

  const StoredScreen* findScreen() const {
    if (byName()) {
      const auto found = byName_.find(block().area.screen);
      return found != byName_.end() ? found->second : nullptr;
    }
    const auto found = std::find_if(stored_.screens.begin(), stored_.screens.end(), [&](const StoredScreen& screen) {
      return rules_.mode == StoreMode::kUpdate ? screen.rect == rect() : holds(screen.rect, rect());
    });
    return found != stored_.screens.end() ? &*found : nullptr;
  }

  void refuseScreen() {
    if (!byName() && rules_.mode == StoreMode::kPatch) return refusePatch();
    if (screensText_.empty()) {
      std::vector<std::pair<std::string, Rect>> screens;
      for (const StoredScreen& screen : stored_.screens) screens.emplace_back(screen.name, screen.rect);
      screensText_ = "; screens: " + listedPlaces(screens);
    }
    if (byName()) {
      return refuse(tovr::kNoSuchScreenName,
                    fmt::format("there is no screen '{}'{}", block().area.screen, screensText_));
    }
    refuse(
        tovr::kNoScreenForRectangle,
        rules_.mode == StoreMode::kUpdate
            ? fmt::format("no screen has exactly the rectangle {}, as an update needs{}", toText(rect()), screensText_)
            : fmt::format("no screen holds the rectangle {}{}", toText(rect()), screensText_));
  }

  void refusePatch() {
    const std::int32_t type = block().area.type;
    std::vector<std::pair<std::string, Rect>> touched;
    for (const std::size_t index : areas_.overlapping({type, rect()})) {
      const StoredArea& area = stored_.areas[index];
      if (byName() && area.screenId != step_.screenId) continue;
      touched.emplace_back(fmt::format("area {}", area.id), area.rect);
    }
    refuse(tovr::kNoMatchingArea,
           fmt::format("no area of type {} holds the whole patch, {}; {}", type, toText(rect()),
                       touched.empty() ? "it touches none; " + areasText() : "it touches " + listedPlaces(touched)));
  }

  // The areas of the block's type.
  const std::string& areasText() {
    const std::int32_t type = block().area.type;
    const auto [text, fresh] = areasTexts_.emplace(type, "");
    if (!fresh) return text->second;
    std::vector<std::pair<std::string, Rect>> areas;
    for (const StoredArea& area : stored_.areas) {
      if (area.type == type) areas.emplace_back(area.screen, area.rect);
    }
    return text->second = fmt::format("areas of type {}: {}", type, listedPlaces(areas));
  }

  // A new screen whose name is probably a slip.
  void objectToName() {
    const std::string& name = block().area.screen;
    const std::string doubt = names_.has(name) ? "" : names_.doubt(name);
    if (!doubt.empty() && !rules_.newScreen) object({Remedy::kNewScreen}, fmt::format("the name '{}' {}", name, doubt));
    names_.add(name);
  }

  // Blocks of one batch that would replace or hide one another.
  void objectToTwice() {
    const AreaName& area = block().area;
    if (byName() && rules_.mode != StoreMode::kPatch) {
      const auto [first, added] = firstWanted_.emplace(std::pair(area.screen, area.type), step_.block);
      if (!added) {
        object({}, fmt::format("{} would replace {}: a database of type 1 keeps one area of a type "
                               "on a screen",
                               placeText(area), nameOf(first->second)));
      }
      return;
    }
    for (const std::size_t other : blocks_.overlapping({area.type, rect()})) {
      if (other >= step_.block) return;
      if (wanted_[other].area.screen != area.screen) continue;
      const bool same = wanted_[other].area.rect == rect();
      if (rules_.mode == StoreMode::kBeside && !(same && replaces(wanted_[other]) && replaces(block()))) continue;
      object({}, fmt::format(same ? "{} is the place of {} too" : "{} overlaps {} of this batch", placeText(area),
                             nameOf(other)));
      return;
    }
  }

  static bool replaces(const WantedBlock& block) { return block.text.number == BlockText().number; }
  std::string nameOf(std::size_t block) const {
    const WantedBlock& other = wanted_[block];
    return other.name.empty() ? toText(other.area.rect) : other.name;
  }

  void decidePatch() {
    for (const std::size_t index : overlapping()) {
      const StoredArea& area = stored_.areas[index];
      if (!holds(area.rect, rect())) continue;
      step_.kind = StoreStep::Kind::kPatch;
      step_.area = index;
      if (!area.fault.empty()) {
        plan_.objections.push_back({kDamaged,
                                    tovr::kCipherFailed,
                                    {},
                                    subject(),
                                    named(fmt::format("{} lies in {}, which is damaged: {}", placeText(block().area),
                                                      areaText(area), area.fault))});
      } else if (area.cellBytes != block().cellBytes) {
        object({}, fmt::format("{} lies in {}, which has {} bytes per cell; this block has {}", placeText(block().area),
                               areaText(area), area.cellBytes, block().cellBytes));
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
    orObject([&] { wanted = formOfPatch(area, block().text); });
    if (kept && wanted && !(*wanted == *kept)) changeForm(area, *kept, wanted, true);
  }

  bool keepVersion(const std::string& stored) {
    return orObject([&] { step_.version = versionToKeep(stored, block().cellBytes, block().text); });
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
    if (rules_.force || !loses || area.cellBytes != block().cellBytes) return;  // another width is a conflict by itself
    object({Remedy::kForce},
           fmt::format("{} keeps its numbers as {}, and {} has {}", areaText(area), step_.keptForm,
                       rules_.mode == StoreMode::kPatch ? "the patch" : "this block", step_.wantedForm));
  }

  // Arguments that contradict each other are one more objection; false then.
  template <class Work>
  bool orObject(Work work) {
    try {
      work();
      return true;
    } catch (const Error& error) {
      plan_.objections.push_back({error.kind(), error.status(), error.remedies(), subject(), named(error.what())});
      return false;
    }
  }

  void decideUpdate(const StoredScreen& screen) {
    const auto found = firstOfType_.find({step_.screenId, block().area.type});
    if (found == firstOfType_.end()) {
      return refuse(tovr::kNoMatchingArea, fmt::format("the screen {} has no area of type {} to update; {}",
                                                       screen.name, block().area.type, areasText()));
    }
    rewrite(found->second);
    step_.movesScreen = byName() && !(screen.rect == rect());
    if (!step_.movesScreen || rules_.force) return;
    for (const StoredArea& area : stored_.areas) {
      if (area.screenId != screen.id || &area == &stored_.areas[found->second] || holds(rect(), area.rect)) continue;
      object({Remedy::kForce}, fmt::format("the screen {} would become {}, and {} would lie outside", screen.name,
                                           toText(rect()), areaText(area)));
    }
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
      } else if (!liesBehindAlready(same, index)) {
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
    object(std::move(remedies), fmt::format("{} overlaps {}", placeText(block().area), shortList(met, "; ")));
  }

  // An area that came after the one that is rewritten in its very place.
  bool liesBehindAlready(const std::optional<std::size_t>& rewritten, std::size_t index) const {
    return rewritten && index > *rewritten && stored_.areas[*rewritten].rect == rect();
  }

  // The stored area that the library rewrites instead of adding one.
  std::optional<std::size_t> takenOver() const {
    if (byName()) {
      const auto found = firstOfType_.find({step_.screenId, block().area.type});
      return found != firstOfType_.end() ? std::optional(found->second) : std::nullopt;
    }
    if (!replaces(block())) return std::nullopt;
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
    if (rules_.force) return;
    const bool inside = holds(rect(), area.rect);
    if (!(area.rect == rect()) && !(rules_.mode == StoreMode::kReplace && inside)) {
      const bool patchable = holds(area.rect, rect()) && area.cellBytes == block().cellBytes;
      std::vector<Remedy> remedies{Remedy::kForce};
      if (patchable) remedies.push_back(Remedy::kPatch);
      if (inside) remedies.push_back(Remedy::kReplace);
      object(std::move(remedies), fmt::format("{} would replace {} of another place, {}, which would be lost",
                                              placeText(block().area), areaText(area), blockText(area)));
    } else if (!area.fault.empty()) {
      object({Remedy::kForce}, fmt::format("the stored block of {} is damaged: {}", areaText(area), area.fault));
    } else if (area.cellBytes != block().cellBytes) {
      object({Remedy::kForce}, fmt::format("{} is stored with {} bytes per cell; this block has {}",
                                           placeText(block().area), area.cellBytes, block().cellBytes));
    }
  }

  void objectToOutside(const StoredScreen* screen) {
    const Rect whole =
        screen != nullptr ? screen->rect : addedScreens_.emplace(block().area.screen, rect()).first->second;
    if (rules_.force || holds(whole, rect())) return;
    object({Remedy::kForce}, fmt::format("{} leaves its screen, which is {}", placeText(block().area), toText(whole)));
  }

  // Stored areas on which the block would lie: databases of type 0 have one plane for all screens.
  std::vector<std::size_t> overlapping() const {
    std::vector<std::size_t> found = areas_.overlapping({block().area.type, rect()});
    const bool one = byName() || rules_.mode == StoreMode::kPatch;
    found.erase(
        std::remove_if(found.begin(), found.end(),
                       [&](std::size_t index) { return one && stored_.areas[index].screenId != step_.screenId; }),
        found.end());
    return found;
  }

  // What would be read where the block and a stored area overlap, as the library looks: the first screen that holds the
  // rectangle, the first area of the type there that does.
  std::string answerBeside(std::size_t index, const std::optional<std::size_t>& same) const {
    const Rect both = *common(stored_.areas[index].rect, rect());
    const std::int64_t screen = byName() ? step_.screenId : screenHolding(both);
    const std::string asked = "reading " + toText(both) + " would ";
    for (const std::size_t other : areas_.overlapping({block().area.type, both})) {
      const bool rewritten = same && other == *same;
      const StoredArea& area = stored_.areas[other];
      if (area.screenId != screen || !holds(rewritten ? rect() : area.rect, both)) continue;
      return asked +
             (rewritten ? "answer from this block" : fmt::format("answer from area {}, which is older", area.id));
    }
    return asked + (screen == step_.screenId ? "answer from this block" : "find nothing on its screen");
  }

  std::int64_t screenHolding(const Rect& part) const {
    for (const StoredScreen& screen : stored_.screens) {
      if (holds(screen.rect, part)) return screen.id;
    }
    return 0;
  }

  const StoredPlaces& stored_;
  const std::vector<WantedBlock>& wanted_;
  const StoreRules& rules_;
  const PlaceIndex areas_;
  const PlaceIndex blocks_;
  std::map<std::pair<std::int64_t, std::int32_t>, std::size_t> firstOfType_;  // by screen and type
  std::map<std::pair<std::string, std::int32_t>, std::size_t> firstWanted_;   // in databases of type 1
  std::map<std::string, const StoredScreen*> byName_;                         // the first of each name
  ScreenNames names_;                                                         // of stored screens and those to be added
  std::map<std::string, Rect> addedScreens_;                                  // each of the first block that names it
  std::string screensText_;                                                   // once it was needed
  std::map<std::int32_t, std::string> areasTexts_;                            // by type, once they were needed
  StorePlan plan_;
  StoreStep step_;
};

}  // namespace

StorePlan planStore(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules) {
  if (stored.databaseType != 0 && stored.databaseType != 1) {
    throw statusError(tovr::kTypeNotGiven,
                      fmt::format("{}: the file does not say whether it finds screens by rectangle or "
                                  "by name",
                                  tovr::kTypeNotGiven))
        .suggest(Remedy::kCheckFile);
  }
  if (rules.mode == StoreMode::kBeside && stored.databaseType == 1) {
    throw Error(kInvalid, "a database of type 1 keeps one area of a type on a screen: nothing can be stored beside it");
  }
  return Planner(stored, wanted, rules).plan();
}

}  // namespace tovrdb
