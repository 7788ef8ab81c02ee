#include "client/storing/StoreWords.h"

#include <fmt/core.h>

#include <map>
#include <set>
#include <utility>

#include "client/contents/AreaWords.h"

namespace tovrdb {
namespace {

// What another host wrote beside the cells and a new block does not have.
std::string lostText(const StoredArea& area) {
  std::string text;
  if (area.number != BlockText().number) text += fmt::format("; its area number {} went with it", area.number);
  if (!area.layerList.empty()) text += "; its list of layers went with it";
  return text;
}

std::string formText(const StoreStep& step) {
  if (step.keptForm.empty()) return {};
  return fmt::format("; its numbers were {} and are now {}", step.keptForm, step.wantedForm);
}

}  // namespace

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
    notices.push_back(fmt::format("note: {} keeps its numbers as {}, and is now read so in {} too, which was {}",
                                  areaText(area), step.keptForm, toText(place.rect), step.wantedForm));
  }
  for (const auto& [area, rects] : patched) {
    const std::string what = rects.size() == 1 ? toText(rects[0]) : fmt::format("{} rectangles", rects.size());
    notices.push_back(fmt::format("patched {} in {}", what, areaText(stored.areas[area])));
  }
  return notices;
}

}  // namespace tovrdb
