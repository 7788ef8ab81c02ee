// What a plan lets pass and what it objects to, in tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tool/database/StorePlan.h"

namespace {

using namespace tovrtool;
using Kind = StoreStep::Kind;
using Rules = StoreRules;

constexpr Rect kWhole{0, 0, 9, 9};
constexpr Rect kCorner{0, 0, 3, 3};
constexpr Rect kMiddle{4, 4, 5, 5};
constexpr Rect kEdge{3, 3, 12, 4};

WantedBlock wanted(const Rect& rect, const std::string& screen = "", std::int32_t cellBytes = 2,
                   std::int32_t number = -1) {
  return {"", {1, screen, rect}, {number, ""}, cellBytes};
}

StoredArea stored(std::int64_t id, const Rect& rect) {
  StoredArea area;
  area.id = id;
  area.screenId = 1;
  area.type = 1;
  area.rect = rect;
  area.cellBytes = 2;
  return area;
}

struct Case {
  const char* what;
  std::vector<Rect> areas;  // with the ids 1, 2, ..., all of type 1, 2 bytes per cell, on the screen S: 0,0..19,9
  std::vector<WantedBlock> wanted;
  Rules rules;
  std::vector<Kind> kinds;              // of the steps, where nothing is objected to
  std::vector<std::string> objections;  // words of each, in their order
};

void expectPlans(int databaseType, const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    StoredPlaces places{databaseType, {{1, "S", {0, 0, 19, 9}}}, {}};
    for (const Rect& rect : c.areas)
      places.areas.push_back(stored(static_cast<std::int64_t>(places.areas.size()) + 1, rect));
    const StorePlan plan = planStore(places, c.wanted, c.rules);
    EXPECT_EQ(plan.objections.size(), c.objections.size());
    for (std::size_t i = 0; i < std::min(plan.objections.size(), c.objections.size()); ++i) {
      EXPECT_NE(plan.objections[i].text.find(c.objections[i]), std::string::npos) << plan.objections[i].text;
    }
    if (!c.objections.empty()) continue;
    ASSERT_EQ(plan.steps.size(), c.kinds.size());
    for (std::size_t i = 0; i < c.kinds.size(); ++i) EXPECT_EQ(plan.steps[i].kind, c.kinds[i]) << i;
  }
}

TEST(StorePlanTest, ByRectangleNothingStoredIsHiddenOrHidesUnasked) {
  const Rules careful;
  const Rules force{StoreMode::kCareful, true};
  const Rules patch{StoreMode::kPatch, false};
  const Rules replace{StoreMode::kReplace, false};
  const Rules beside{StoreMode::kBeside, false};
  const std::string older = "coef get of 4,4..5,5 would answer from area 1, which is older";
  expectPlans(
      0, {
             {"a free place", {kCorner}, {wanted(kMiddle)}, careful, {Kind::kAdd}, {}},
             {"the same place", {kWhole}, {wanted(kWhole)}, careful, {Kind::kRewrite}, {}},
             {"the same place, wider cells",
              {kWhole},
              {wanted(kWhole, "", 4)},
              careful,
              {},
              {"2 bytes per cell; this block has 4"}},
             {"the same, forced", {kWhole}, {wanted(kWhole, "", 4)}, force, {Kind::kRewrite}, {}},
             {"a hidden one again", {kWhole, kMiddle}, {wanted(kMiddle)}, careful, {}, {older}},
             {"one that hides another again", {kWhole, kMiddle}, {wanted(kWhole)}, careful, {Kind::kRewrite}, {}},
             {"inside a stored one", {kWhole}, {wanted(kMiddle)}, careful, {}, {older}},
             {"force is not for hiding", {kWhole}, {wanted(kMiddle)}, force, {}, {older}},
             {"around a stored one", {kMiddle}, {wanted(kWhole)}, careful, {}, {older}},
             {"around, replacing", {kMiddle}, {wanted(kWhole)}, replace, {Kind::kAdd}, {}},
             {"across, replacing",
              {kWhole},
              {wanted(kEdge)},
              replace,
              {},
              {"coef get of 3,3..9,4 would answer from area 1"}},
             {"beside", {kWhole}, {wanted(kMiddle)}, beside, {Kind::kAdd}, {}},
             {"a number does not hide it", {kWhole}, {wanted(kWhole, "", 2, 5)}, careful, {}, {"overlaps area 1"}},
             {"a number beside", {kWhole}, {wanted(kWhole, "", 2, 5)}, beside, {Kind::kAdd}, {}},
             {"patch", {kCorner, kWhole}, {wanted(kMiddle)}, patch, {Kind::kPatch}, {}},
             {"patch of other cells", {kWhole}, {wanted(kMiddle, "", 4)}, patch, {}, {"which has 2 bytes per cell"}},
             {"patch of nothing", {kCorner}, {wanted(kMiddle)}, patch, {}, {"4113"}},
             {"outside every screen", {}, {wanted({0, 0, 20, 0})}, careful, {}, {"screens: S (0,0..19,9)"}},
             {"one place twice", {}, {wanted(kMiddle), wanted(kMiddle)}, force, {}, {"is the place of 4,4..5,5 too"}},
             {"twice, with numbers, beside",
              {},
              {wanted(kMiddle, "", 2, 1), wanted(kMiddle, "", 2, 2)},
              beside,
              {Kind::kAdd, Kind::kAdd},
              {}},
             {"patches upon each other",
              {kWhole},
              {wanted(kCorner), wanted(kEdge)},
              patch,
              {},
              {"overlaps 0,0..3,3 of this batch", "4113"}},
             {"all of them are told",
              {kWhole},
              {wanted(kCorner), wanted(kMiddle)},
              careful,
              {},
              {"0,0..3,3 of type 1", "4,4..5,5 of type 1"}},
         });
}

TEST(StorePlanTest, ByNameTheOneAreaOfATypeIsNotLostUnasked) {
  const Rules careful;
  const Rules force{StoreMode::kCareful, true};
  const Rules patch{StoreMode::kPatch, false};
  expectPlans(
      1, {
             {"a new screen", {}, {wanted(kWhole, "T")}, careful, {Kind::kAdd}, {}},
             {"the same place", {kWhole}, {wanted(kWhole, "S")}, careful, {Kind::kRewrite}, {}},
             {"another place", {kCorner}, {wanted(kMiddle, "S")}, careful, {}, {"would replace area 1 (0,0..3,3)"}},
             {"another place, forced", {kCorner}, {wanted(kMiddle, "S")}, force, {Kind::kRewrite}, {}},
             {"around it, replacing",
              {kCorner},
              {wanted(kWhole, "S")},
              {StoreMode::kReplace, false},
              {Kind::kRewrite},
              {}},
             {"twice, apart", {}, {wanted(kCorner, "S"), wanted(kMiddle, "S")}, force, {}, {"would replace 0,0..3,3"}},
             {"out of the screen",
              {},
              {wanted({0, 0, 20, 0}, "S")},
              careful,
              {},
              {"leaves its screen, which is 0,0..19,9"}},
             {"patch", {kWhole}, {wanted(kMiddle, "S")}, patch, {Kind::kPatch}, {}},
             {"patches of one screen",
              {kWhole},
              {wanted(kCorner, "S"), wanted(kMiddle, "S")},
              patch,
              {Kind::kPatch, Kind::kPatch},
              {}},
             {"patch of no screen", {kWhole}, {wanted(kMiddle, "T")}, patch, {}, {"4112"}},
             {"update of nothing", {}, {wanted(kWhole, "S")}, {StoreMode::kUpdate, false}, {}, {"4113"}},
         });
  const StoredPlaces places{1, {}, {}};
  EXPECT_THROW(planStore(places, {wanted(kWhole)}, careful), ToolError);
  EXPECT_THROW(planStore(places, {wanted(kWhole, "S")}, {StoreMode::kBeside, false}), ToolError);
}

}  // namespace
