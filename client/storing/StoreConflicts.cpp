#include "client/storing/StoreConflicts.h"

#include <fmt/core.h>

#include "client/contents/AreaNames.h"
#include "storage/StatusCodes.h"

namespace tovrdb {

StoreConflicts::StoreConflicts(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted,
                               const StoreRules& rules)
    : stored_(stored), wanted_(wanted), rules_(rules) {
  for (std::size_t i = 0; i < wanted.size(); ++i) batch_.add(wanted[i].area.type, wanted[i].area.rect, i);
  batch_.sort();
  for (const StoredScreen& screen : stored.screens) names_.add(screen.name);
}

void StoreConflicts::add(ErrorKind kind, int status, std::vector<Remedy> remedies, const std::string& text) {
  Subject subject{block().name, block().area.screen, std::nullopt, rect()};
  objections_.push_back({kind, status, std::move(remedies), std::move(subject),
                         block().name.empty() ? text : block().name + ": " + text});
}

void StoreConflicts::object(std::vector<Remedy> remedies, const std::string& text) {
  add(kConflict, 0, std::move(remedies), text);
}

void StoreConflicts::refuse(int status, const std::string& text) {
  add(kRefused, status, {}, fmt::format("{}: {}", status, text));
}

void StoreConflicts::refuseDamaged(const StoredArea& area) {
  add(kDamaged, tovr::kCipherFailed, {},
      fmt::format("{} lies in {}, which is damaged: {}", placeText(block().area), areaText(area), area.fault));
}

void StoreConflicts::checkBatch() {
  const AreaName& area = block().area;
  if (byName() && rules_.mode != StoreMode::kPatch) {
    const auto [first, added] = firstWanted_.emplace(std::pair(area.screen, area.type), block_);
    if (added) return;
    return object({}, fmt::format("{} would replace {}: a database of type 1 keeps one area of a type on a screen",
                                  placeText(area), nameOf(first->second)));
  }
  for (const std::size_t other : batch_.overlapping(area.type, rect())) {
    if (other >= block_) return;
    if (wanted_[other].area.screen != area.screen) continue;
    const bool same = wanted_[other].area.rect == rect();
    if (rules_.mode == StoreMode::kBeside && !(same && replaces(wanted_[other]) && replaces(block()))) continue;
    return object({}, fmt::format(same ? "{} is also the rectangle of {}" : "{} overlaps {} of this batch",
                                  placeText(area), nameOf(other)));
  }
}

bool StoreConflicts::replaces(const WantedBlock& block) { return block.text.number == BlockText().number; }

std::string StoreConflicts::nameOf(std::size_t block) const {
  const WantedBlock& other = wanted_[block];
  return other.name.empty() ? toText(other.area.rect) : other.name;
}

void StoreConflicts::checkNewName() {
  const std::string& name = block().area.screen;
  const std::string doubt = names_.has(name) ? "" : names_.doubt(name);
  if (!doubt.empty() && !rules_.newScreen) object({Remedy::kNewScreen}, fmt::format("the name '{}' {}", name, doubt));
  names_.add(name);
}

void StoreConflicts::checkInside(const StoredScreen* screen) {
  const Rect whole =
      screen != nullptr ? screen->rect : addedScreens_.emplace(block().area.screen, rect()).first->second;
  if (rules_.force || holds(whole, rect())) return;
  object({Remedy::kForce},
         fmt::format("{} does not fit its screen, which is {}", placeText(block().area), toText(whole)));
}

void StoreConflicts::checkRewrite(const StoredArea& area) {
  if (rules_.force) return;
  const bool inside = holds(rect(), area.rect);
  if (!(area.rect == rect()) && !(rules_.mode == StoreMode::kReplace && inside)) {
    const bool patchable = holds(area.rect, rect()) && area.cellBytes == block().cellBytes;
    std::vector<Remedy> remedies{Remedy::kForce};
    if (patchable) remedies.push_back(Remedy::kPatch);
    if (inside) remedies.push_back(Remedy::kReplace);
    object(std::move(remedies), fmt::format("{} would replace {} of another rectangle, {}, which would be lost",
                                            placeText(block().area), areaText(area), blockText(area)));
  } else if (!area.fault.empty()) {
    object({Remedy::kForce}, fmt::format("the stored block of {} is damaged: {}", areaText(area), area.fault));
  } else if (area.cellBytes != block().cellBytes) {
    object({Remedy::kForce}, fmt::format("{} is stored with {} bytes per cell; this block has {}",
                                         placeText(block().area), area.cellBytes, block().cellBytes));
  }
}

void StoreConflicts::checkMove(const StoredScreen& screen, std::size_t except) {
  if (rules_.force) return;
  for (std::size_t i = 0; i < stored_.areas.size(); ++i) {
    const StoredArea& area = stored_.areas[i];
    if (area.screenId != screen.id || i == except || holds(rect(), area.rect)) continue;
    object({Remedy::kForce}, fmt::format("the screen {} would become {}, and {} would lie outside", screen.name,
                                         toText(rect()), areaText(area)));
  }
}

void StoreConflicts::checkForm(const StoredArea& area, const std::string& kept, const std::string& wanted) {
  if (rules_.force || area.cellBytes != block().cellBytes) return;  // another width is a conflict by itself
  object({Remedy::kForce}, fmt::format("{} keeps its numbers as {}, and {} has {}", areaText(area), kept,
                                       rules_.mode == StoreMode::kPatch ? "the patch" : "this block", wanted));
}

}  // namespace tovrdb
