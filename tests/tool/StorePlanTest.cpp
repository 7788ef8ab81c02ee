// What a plan lets pass and what it objects to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/contents/Screens.h"
#include "client/storing/StorePlan.h"

namespace {

using namespace tovrdb;
using Kind = StoreStep::Kind;
using Rects = std::vector<Rect>;
using Wanted = std::vector<WantedBlock>;

constexpr Rect kWhole{0, 0, 9, 9};
constexpr Rect kCorner{0, 0, 3, 3};
constexpr Rect kMiddle{4, 4, 5, 5};
constexpr Rect kEdge{3, 3, 12, 4};
constexpr Rect kOutside{0, 0, 20, 0};

constexpr StoreRules kCareful;
constexpr StoreRules kForce{StoreMode::kCareful, true};
constexpr StoreRules kPatch{StoreMode::kPatch, false};
constexpr StoreRules kReplace{StoreMode::kReplace, false};
constexpr StoreRules kBeside{StoreMode::kBeside, false};
constexpr StoreRules kUpdate{StoreMode::kUpdate, false};

WantedBlock block(const Rect& rect, std::int32_t cellBytes = 2, std::int32_t number = -1) {
  return {"", {1, "", rect}, {number, ""}, cellBytes};
}

WantedBlock named(const Rect& rect, const std::string& screen = "S") { return {"", {1, screen, rect}, {-1, ""}, 2}; }

struct StorePlanTest : testing::Test {
  // Beside areas with the ids 1, 2, ..., all of type 1, 2 bytes per cell, on the screen S: 0,0,19,9.
  StorePlan plan(const Rects& areas, const Wanted& wanted, const StoreRules& rules) const {
    StoredPlaces places{databaseType, {{1, "S", {0, 0, 19, 9}}}, {}};
    for (const Rect& rect : areas) {
      StoredArea area;
      area.id = static_cast<std::int64_t>(places.areas.size()) + 1;
      area.screenId = area.type = 1;
      area.rect = rect;
      area.cellBytes = 2;
      area.version = version;
      places.areas.push_back(area);
    }
    return planStore(places, wanted, rules);
  }

  testing::AssertionResult takes(const std::vector<Kind>& kinds, const Rects& areas, const Wanted& wanted,
                                 const StoreRules& rules = kCareful) const {
    const StorePlan found = plan(areas, wanted, rules);
    if (!found.objections.empty()) return testing::AssertionFailure() << found.objections.front().text;
    std::vector<Kind> steps;
    for (const StoreStep& step : found.steps) steps.push_back(step.kind);
    return testing::AssertionResult(steps == kinds) << "steps " << testing::PrintToString(steps);
  }

  // With these words in its objections, one each.
  testing::AssertionResult refuses(const std::vector<std::string>& words, const Rects& areas, const Wanted& wanted,
                                   const StoreRules& rules = kCareful) const {
    const StorePlan found = plan(areas, wanted, rules);
    bool same = found.objections.size() == words.size();
    auto result = testing::AssertionFailure();
    for (std::size_t i = 0; i < found.objections.size(); ++i) {
      result << found.objections[i].text << "\n";
      same = same && found.objections[i].text.find(words[i]) != std::string::npos;
    }
    return same ? testing::AssertionSuccess() : result;
  }

  int databaseType = 0;
  std::string version;  // of every area
};

TEST_F(StorePlanTest, ByRectangleAFreePlaceIsAddedAndTheSamePlaceRewritten) {
  EXPECT_TRUE(takes({Kind::kAdd}, {kCorner}, {block(kMiddle)}));
  EXPECT_TRUE(takes({Kind::kRewrite}, {kWhole}, {block(kWhole)}));
  EXPECT_TRUE(refuses({"2 bytes per cell; this block has 4"}, {kWhole}, {block(kWhole, 4)}));
  EXPECT_TRUE(takes({Kind::kRewrite}, {kWhole}, {block(kWhole, 4)}, kForce));
  EXPECT_TRUE(refuses({"screens: S (0,0,19,9)"}, {}, {block(kOutside)}));
}

TEST_F(StorePlanTest, ByRectangleNothingStoredIsHiddenOrHidesUnasked) {
  const std::string older = "reading 4,4,5,5 would answer from area 1, which is older";
  EXPECT_TRUE(refuses({older}, {kWhole}, {block(kMiddle)}));
  EXPECT_TRUE(refuses({older}, {kWhole}, {block(kMiddle)}, kForce));
  EXPECT_TRUE(refuses({older}, {kMiddle}, {block(kWhole)}));
  EXPECT_TRUE(refuses({older}, {kWhole, kMiddle}, {block(kMiddle)}));
  EXPECT_TRUE(takes({Kind::kRewrite}, {kWhole, kMiddle}, {block(kWhole)}));
  EXPECT_TRUE(takes({Kind::kAdd}, {kMiddle}, {block(kWhole)}, kReplace));
  EXPECT_TRUE(refuses({"reading 3,3,9,4 would answer from area 1"}, {kWhole}, {block(kEdge)}, kReplace));
  EXPECT_TRUE(takes({Kind::kAdd}, {kWhole}, {block(kMiddle)}, kBeside));
  EXPECT_TRUE(refuses({"overlaps area 1"}, {kWhole}, {block(kWhole, 2, 5)}));
  EXPECT_TRUE(takes({Kind::kAdd}, {kWhole}, {block(kWhole, 2, 5)}, kBeside));
}

TEST_F(StorePlanTest, ByRectangleAPatchWantsAnAreaThatHoldsItWithTheSameCells) {
  EXPECT_TRUE(takes({Kind::kPatch}, {kCorner, kWhole}, {block(kMiddle)}, kPatch));
  EXPECT_TRUE(refuses({"which has 2 bytes per cell"}, {kWhole}, {block(kMiddle, 4)}, kPatch));
  EXPECT_TRUE(refuses({"4113: no area of type 1 holds the whole patch, 3,3,12,4; it overlaps area 2 (0,0,3,3), area 3"},
                      {{0, 8, 1, 9}, kCorner, kWhole}, {block(kEdge)}, kPatch));
  EXPECT_TRUE(refuses({"it overlaps none; areas of type 1: "}, {kCorner}, {block(kMiddle)}, kPatch));
}

TEST_F(StorePlanTest, BlocksOfOneBatchAreHeldAgainstEachOtherAndAllObjectionsTold) {
  EXPECT_TRUE(refuses({"is also the rectangle of 4,4,5,5"}, {}, {block(kMiddle), block(kMiddle)}, kForce));
  EXPECT_TRUE(takes({Kind::kAdd, Kind::kAdd}, {}, {block(kMiddle, 2, 1), block(kMiddle, 2, 2)}, kBeside));
  EXPECT_TRUE(refuses({"overlaps 0,0,3,3 of this batch", "4113"}, {kWhole}, {block(kCorner), block(kEdge)}, kPatch));
  EXPECT_TRUE(refuses({"0,0,3,3 of type 1", "4,4,5,5 of type 1"}, {kWhole}, {block(kCorner), block(kMiddle)}));
}

TEST_F(StorePlanTest, ByNameTheOneAreaOfATypeIsNotLostUnasked) {
  databaseType = 1;
  EXPECT_TRUE(takes({Kind::kAdd}, {kWhole}, {named(kWhole, "T")}));
  EXPECT_TRUE(takes({Kind::kRewrite}, {kWhole}, {named(kWhole)}));
  EXPECT_TRUE(refuses({"would replace area 1 (0,0,3,3)"}, {kCorner}, {named(kMiddle)}));
  EXPECT_TRUE(takes({Kind::kRewrite}, {kCorner}, {named(kMiddle)}, kForce));
  EXPECT_TRUE(takes({Kind::kRewrite}, {kCorner}, {named(kWhole)}, kReplace));
  EXPECT_TRUE(refuses({"would replace 0,0,3,3"}, {}, {named(kCorner), named(kMiddle)}, kForce));
  EXPECT_TRUE(refuses({"does not fit its screen, which is 0,0,19,9"}, {}, {named(kOutside)}));
  EXPECT_TRUE(takes({Kind::kPatch, Kind::kPatch}, {kWhole}, {named(kCorner), named(kMiddle)}, kPatch));
  EXPECT_TRUE(refuses({"4112"}, {kWhole}, {named(kMiddle, "T")}, kPatch));
  EXPECT_TRUE(refuses({"4113"}, {}, {named(kWhole)}, kUpdate));
  EXPECT_TRUE(refuses({"area 2 (4,4,5,5) would lie outside"}, {kCorner, kMiddle}, {named(kCorner)}, kUpdate));
  EXPECT_THROW(plan({}, {block(kWhole)}, kCareful), Error);
  EXPECT_THROW(plan({}, {named(kWhole)}, kBeside), Error);
}

TEST_F(StorePlanTest, KeptForm_IsNotLostUnasked) {
  const std::string kept = "v1 [1 x uint16, scale 1/4, unit cd]";
  const std::string conflict = "area 1 (0,0,9,9) keeps its numbers as 1 x uint16, scale 1/4, unit cd, and ";
  const struct {
    const char* stored;
    const char* array;  // the type that it tells; null: none
    const char* scale;
    const char* text;
    StoreRules rules;
    bool passes;
    std::string words;  // the version that is kept, or those of the objection
  } cases[] = {
      {"", "uint16", nullptr, "", kCareful, true, "[1 x uint16]"},
      {"", "uint16", nullptr, "v1", kCareful, true, "v1 [1 x uint16]"},
      {"", "uint16", nullptr, "v1 [1 x uint16]", kCareful, true, "v1 [1 x uint16]"},
      {"another's", "uint16", nullptr, "", kCareful, true, "another's"},
      {kept.c_str(), nullptr, nullptr, "v2", kCareful, true, "v2 [1 x uint16, scale 1/4, unit cd]"},
      {kept.c_str(), "uint16", nullptr, "", kCareful, true, kept},
      {"[1 x uint16]", "uint16", "1/4", "", kCareful, true, "[1 x uint16, scale 1/4]"},
      {kept.c_str(), "float16", nullptr, "", kCareful, false, conflict + "this block has 1 x float16"},
      {kept.c_str(), "uint8", nullptr, "", kReplace, false, conflict + "this block has 2 x uint8"},
      {kept.c_str(), "uint16", "1/8", "", kCareful, false, conflict + "this block has 1 x uint16, scale 1/8, unit cd"},
      {kept.c_str(), "float16", nullptr, "", kForce, true, "v1 [1 x float16]"},
      {kept.c_str(), "float16", nullptr, "", kPatch, false, conflict + "the patch has 1 x float16"},
      {kept.c_str(), "float16", nullptr, "", {StoreMode::kPatch, true}, true, kept},
      {"", "uint16", nullptr, "a remark of 48 characters, which is one too many", kCareful, false,
       "has 48, and the form of the numbers beside it 13"},
  };
  for (const auto& each : cases) {
    version = each.stored;
    WantedBlock wanted = block(kWhole);
    wanted.text.version = each.text;
    if (each.array != nullptr) wanted.text.dtype = parseNumberType(each.array);
    if (each.scale != nullptr) wanted.text.form.scale = parseScale(each.scale);
    const StorePlan found = plan({kWhole}, {wanted}, each.rules);
    ASSERT_EQ(found.objections.empty(), each.passes) << each.words;
    if (each.passes) {
      EXPECT_EQ(found.steps[0].version, each.words);
    } else {
      EXPECT_NE(found.objections[0].text.find(each.words), std::string::npos) << found.objections[0].text;
    }
  }
}

TEST_F(StorePlanTest, ByName_SlipsOfScreenNames) {
  databaseType = 1;
  for (const std::string slip : {"s", "S ", " S", "s\t", "T ", "\nT"}) {
    EXPECT_TRUE(refuses({"the name '" + slip + "' "}, {}, {named(kWhole, slip)}));
    EXPECT_TRUE(takes({Kind::kAdd}, {}, {named(kWhole, slip)}, {StoreMode::kCareful, false, true}));
  }
  EXPECT_TRUE(refuses({"differs from the screen 'T\xC3\xBCr 1' only in case or blanks"}, {},
                      {named(kWhole, "T\xC3\xBCr 1"), named(kWhole, "t\xC3\x9CR1")}));
  EXPECT_EQ(foldedName("\xC3\x97 \xD0\x81\xC2\xA0\xCE\xA9\xFF\xC3"), "\xC3\x97\xD1\x91\xCF\x89\xFF\xC3");
}

}  // namespace
