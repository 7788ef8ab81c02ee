// What the program reads out of databases: numbers in their kept form, cells across areas, cabinets, lists.
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <vector>

#include "client/reading/AreaLookup.h"
#include "client/reading/Mosaic.h"
#include "storage/StatusCodes.h"
#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;
using Json = nlohmann::json;

template <class Number>
std::string array(const char* descr, const char* shape, const std::vector<Number>& numbers) {
  std::string bytes(numbers.size() * sizeof(Number), '\0');
  std::memcpy(bytes.data(), numbers.data(), bytes.size());
  return npy(descr, shape, bytes);
}

std::string uint16Array(const char* shape, const std::vector<std::uint16_t>& numbers) {
  return array("<u2", shape, numbers);
}

struct ReadingTest : ToolTest {
  // A wall of 4 x 2 in two areas of 2 x 2, cells 0 to 7, with a scale and a unit.
  void makeAreas() const {
    succeed("create wall.db --type 0");
    succeed("screen add wall.db --name left --rect 0,0,5,1");
    write("a.npy", uint16Array("2, 2", {0, 1, 4, 5}));
    write("b.npy", uint16Array("2, 2", {2, 3, 6, 7}));
    succeed(kPut + "--at 0,0 a.npy");
    succeed(kPut + "--at 2,0 b.npy");
  }

  const std::string kPut = "coef put wall.db --type 1 --scale 1/4 --unit cd/m2 ";
  const std::string kGet = "coef get wall.db --type 1 ";
};

TEST_F(ReadingTest, TheFormOfNumbersIsKeptAndNeverGuessed) {
  makeAreas();
  succeed(kGet + "--rect 0,0,1,1 -o part.npy");
  EXPECT_EQ(read("part.npy"), uint16Array("2, 2, 1", {0, 1, 4, 5}));
  EXPECT_EQ(succeed(kGet + "--rect 0,1,1,1 --csv -o -"), "column,row,value0\n0,1,1\n1,1,1.25\n");
  EXPECT_EQ(succeed(kGet + "--rect 1,1,1,1 --csv --scale 1 -o -"), "column,row,value0\n1,1,5\n");

  const std::string raw = "coef put wall.db --type 2 --rect 0,0,3,1 --raw cells --cell-bytes 8 ";
  succeed(raw + "--version-text another --dtype float32");
  succeed(raw);  // what is kept stays
  EXPECT_TRUE(contains(succeed("coef list wall.db"), "another [2 x float32]"));
  succeed("coef put wall.db --type 3 --rect 0,0,3,1 --raw cells --cell-bytes 8");
  expectFailure(2, "say it with --dtype", "coef stats wall.db --type 3");
  expectFailure(2, "say it with --dtype", "heatmap wall.db --type 3 -o no.png");
  expectFailure(2, "say it with --dtype", "coef get wall.db --type 3 --rect 0,0,1,0 -o no.npy");
  expectTold("keeps its numbers as uint16, scale 1/4, unit cd/m2; their bytes are read as int16",
             kGet + "--rect 0,0,1,1 --dtype int16 -o other.npy");
  succeed("coef put wall.db --type 1 --at 2,0 b.npy --unit nits --force");
  expectFailure(2, "read them apart, with --area; say how to read them", "heatmap wall.db --type 1 -o no.png");
  succeed("heatmap wall.db --type 1 --rect 2,0,3,1 -o part.png");
  expectFailure(2, "the array has uint16 values", "coef put wall.db --type 1 --at 0,0 a.npy --dtype int16");
  expectFailure(2, "60 characters", "coef put wall.db --type 1 --at 0,0 a.npy --unit " + std::string(60, 'x'));
}

TEST_F(ReadingTest, SeveralAreasReadAsOneArray) {
  makeAreas();
  expectFailure(1, "areas that overlap it: 1 (0,0,1,1), 2 (2,0,3,1); read across them with --mosaic",
                kGet + "--rect 0,0,3,1 -o x.npy");
  succeed(kGet + "--rect 0,0,3,1 --mosaic -o all.npy");
  EXPECT_EQ(read("all.npy"), uint16Array("2, 4, 1", {0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(run(kGet + "--rect 0,0,3,1 --mosaic -o -").err, "") << "nothing to note";
  const Outcome beyond = run(kGet + "--rect 1,0,4,1 -o x.npy");
  EXPECT_TRUE(contains(beyond.err, "it reaches one column before area 2, which begins at 2,0, and one column beyond"));
  EXPECT_EQ(beyond.err.find("--mosaic"), std::string::npos) << "it would fail, too";
  expectFailure(1, "one row beyond area 1, which ends at 1,1", kGet + "--rect 0,0,1,2 -o x.npy");
  const std::string wider = kGet + "--rect 2,1,4,1 --mosaic --force -o x.npy";
  expectFailure(1, "no area covers 1 cell of 2,1,4,1, the first at 4,1", wider);
  expectTold("filled 1 cell that no area covers", wider + " --fill 9");
  EXPECT_EQ(read("x.npy"), uint16Array("1, 3, 1", {6, 7, 9}));
  expectFailure(2, "-1 is not a number of type uint16", wider + " --fill -1");

  write("c.npy", uint16Array("1, 3", {90, 91, 92}));
  succeed(kPut + "--at 1,0 --beside c.npy");
  expectTold("areas overlap", kGet + "--rect 0,0,3,0 --mosaic -o top.npy");
  EXPECT_EQ(read("top.npy"), uint16Array("1, 4, 1", {0, 1, 2, 3})) << "the first stored counts";
  write("d.npy", uint16Array("2, 4", {80, 81, 82, 83, 84, 85, 86, 87}));
  succeed(kPut + "--at 0,0 --beside d.npy");  // one area holds all of it, and counts last
  expectTold("areas overlap", kGet + "--rect 0,0,3,1 --mosaic --force -o top.npy");
  EXPECT_EQ(read("top.npy"), read("all.npy"));
  succeed("coef get wall.db --area 3 -o third.npy");
  EXPECT_EQ(read("third.npy"), uint16Array("1, 3, 1", {90, 91, 92}));
}

TEST_F(ReadingTest, CabinetsHaveFiguresAndSeams) {
  makeAreas();
  const std::string stats = "coef stats wall.db --type 1 --mosaic --rect 0,0,3,1 --cabinet 2x2";
  const Json component = Json::parse(succeed(stats + " --json"))["components"][0];
  EXPECT_EQ(component["cabinets"][1]["mean"], 4.5 / 4);
  EXPECT_EQ(component["seams"][0]["difference"], 0.25);
  EXPECT_TRUE(contains(succeed(stats + " --csv seams"), "\n0,0,0,2,0,2,0,2,1,0.25\n"));
  const Json byArea = Json::parse(succeed("coef stats wall.db --type 1 --by-area --json"));
  EXPECT_EQ(byArea["components"][0]["cabinets"].size(), 2U);
}

TEST(StoredAreaTest, FaultOfWidthsAndSizes) {
  tovrdb::StoredArea area;
  area.rect = {0, 0, 9, 9};
  const struct {
    std::int32_t cellBytes;
    std::int64_t storedBytes;
    const char* fault;
  } cases[] = {{2, 208, ""},
               {2, 200, "its block is too short: 196 bytes for 10 x 10 cells of 2 bytes"},
               {INT32_MAX, 208, "its block is too short: 204 bytes for 10 x 10 cells of 2147483647 bytes"},
               {-3, 208, "its cells have -3 bytes each"}};
  for (const auto& c : cases) {
    area.cellBytes = c.cellBytes;
    area.storedBytes = c.storedBytes;
    EXPECT_EQ(faultOf(area), c.fault);
  }
  area.rect = {0, 9, 9, 0};
  EXPECT_EQ(faultOf(area), "no cells can lie in its rectangle 0,9,9,0");
}

TEST(CompositionTest, FirstRectangleShows) {
  tovrdb::Composition composition({0, 0, 3, 1});
  std::vector<int> shown(8);
  const auto add = [&](const tovrdb::Rect& rect, int value) {
    composition.add(rect, [&shown, value](const tovrdb::Rect&) {
      return [&shown, value](const tovrdb::CellRun& run) {
        for (int x = run.left; x <= run.right; ++x) shown[static_cast<std::size_t>(run.y * 4 + x)] = value;
      };
    });
  };
  add({0, 0, 1, 1}, 1);
  EXPECT_FALSE(composition.overlapping());
  add({1, 0, 2, 1}, 7);
  add({0, 0, 1, 0}, 9);  // hidden
  EXPECT_EQ(shown, (std::vector<int>{1, 1, 7, 0, 1, 1, 7, 0}));
  EXPECT_TRUE(composition.overlapping());
  EXPECT_FALSE(composition.complete());
  add({3, -1, 9, 9}, 5);
  EXPECT_EQ(shown, (std::vector<int>{1, 1, 7, 5, 1, 1, 7, 5}));
  EXPECT_TRUE(composition.complete());
}

TEST(AreaLookupTest, NoAnswer_SaysWhatThereIs) {
  const std::vector<tovrdb::StoredScreen> screens{{1, "left", {0, 0, 3, 1}}, {2, "right", {4, 0, 7, 1}}};
  std::vector<tovrdb::StoredArea> areas(2);
  for (tovrdb::StoredArea& area : areas) area.cellBytes = 2;
  areas[0].rect = {0, 0, 1, 1};
  areas[1].rect = {2, 0, 3, 1};
  const struct {
    int databaseType;
    tovrdb::AreaName asked;
    int status;
    std::size_t remedies;
    const char* text;
  } cases[] = {
      {0, {1, "", {0, 0, 3, 1}}, tovr::kNoMatchingArea, 1, "areas that overlap it: 0 (0,0,1,1), 0 (2,0,3,1)"},
      {0, {1, "", {3, 0, 4, 1}}, tovr::kNoScreenForRectangle, 0, "(2,0,3,1); it reaches one column beyond area 0"},
      {0, {1, "", {6, 0, 8, 1}}, tovr::kNoScreenForRectangle, 0, "it reaches one column beyond the screen right"},
      {1, {1, "right", {4, 0, 5, 1}}, tovr::kNoMatchingArea, 0, "asked for 4,0,5,1; areas of the type: "},
      {1, {1, "middle", {4, 0, 5, 1}}, tovr::kNoSuchScreenName, 0, "screens: left (0,0,3,1), right (4,0,7,1)"}};
  for (const auto& c : cases) {
    const tovrdb::Error error = noAnswer(c.asked, c.databaseType, screens, areas);
    EXPECT_EQ(error.status(), c.status);
    EXPECT_EQ(error.remedies().size(), c.remedies);
    EXPECT_TRUE(contains(error.what(), c.text)) << error.what();
  }
}

// Three areas side by side; a page in the middle of the second one's block is damaged.
TEST_F(ReadingTest, ABadPageLeavesOtherAreasAlone) {
  succeed("create wall.db --type 0");
  succeed("screen add wall.db --name left --rect 0,0,299,99");
  write("c.npy", uint16Array("100, 100", std::vector<std::uint16_t>(10000, 7)));
  succeed(kPut + "--at 0,0 c.npy");
  const auto before = fs::file_size(path("wall.db"));
  succeed(kPut + "--at 100,0 c.npy");
  const auto after = fs::file_size(path("wall.db"));
  succeed(kPut + "--at 200,0 c.npy");
  fs::copy_file(path("wall.db"), path("sound.db"));
  std::string damaged = read("wall.db");
  damaged[(before + after) / 2] = static_cast<char>(damaged[(before + after) / 2] ^ 1);
  write("wall.db", damaged);

  const Json list = Json::parse(succeed("coef list wall.db --json"));
  ASSERT_EQ(list.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(list[i].contains("fault"), i == 1) << i;
  EXPECT_TRUE(contains(succeed("coef list wall.db"), "its block 2 cannot be read"));
  EXPECT_TRUE(contains(succeed("info wall.db"), "damaged"));
  succeed(kGet + "--rect 0,0,99,99 --mosaic -o sound.npy");
  succeed("coef get wall.db --area 3 -o third.npy");
  for (const char* wanted : {"--type 1 --rect 0,0,299,99 --mosaic", "--type 1 --rect 100,0,101,0", "--area 2"}) {
    expectFailure(8, "area 2 (100,0,199,99 of type 1 on screen left) is damaged",
                  "coef get wall.db -o no.npy " + std::string(wanted));
  }
  expectTold("area 2 (100,0,199,99 of type 1 on screen left) is hatched", "heatmap wall.db --type 1 -o wall.png");
  expectFailure(8, "row 2 of Coef_Info, whose payload is row 2 of Coef: area 2 (", "export wall.db folder");
  succeed("import folder rescued.db");
  EXPECT_EQ(Json::parse(succeed("coef list rescued.db --json")).size(), 2U);
  write("a.npy", uint16Array("1, 1", {8}));
  succeed("coef put sound.db --type 1 --patch --at 200,0 a.npy");
  const Outcome difference = run("diff sound.db wall.db");
  EXPECT_EQ(difference.code, 8);
  EXPECT_TRUE(contains(difference.out, "cannot be compared: in wall.db: its block 2 cannot be read"));
  EXPECT_TRUE(contains(difference.out, "block of left, 200,0,299,99, type 1: 1 of 10000 cells differ"));
  succeed(kPut + "--patch --at 200,0 a.npy");
  expectFailure(8, "which is damaged: its block 2", kPut + "--patch --at 100,0 a.npy");
  EXPECT_FALSE(anythingUnfinished());
}

TEST_F(ReadingTest, AScreenRowThatIsNoNumberIsNamed) {
  makeAreas();
  sql(path("wall.db"), "update Screen_Info set left = 'abc'");
  const char* const commands[] = {"screen list wall.db", "info wall.db",
                                  "coef get wall.db --type 1 --rect 0,0,1,1 -o x.npy",
                                  "coef put wall.db --type 1 --at 0,0 a.npy", "heatmap wall.db --type 1 -o x.png"};
  for (const char* command : commands) {
    expectFailure(8, "row 1 of Screen_Info is damaged: its column left holds 'abc'", command);
  }
}

TEST_F(ReadingTest, EveryListHasJson) {
  makeAreas();
  succeed("data put wall.db --type 5 a.npy");
  succeed("measure put wall.db --type 3 --rect 0,0,1,1 a.npy");
  EXPECT_EQ(Json::parse(succeed("coef list wall.db --json"))[1]["scale"], 0.25);
  EXPECT_EQ(Json::parse(succeed("screen list wall.db --json"))[0]["columns"], 6);
  EXPECT_EQ(Json::parse(succeed("data list wall.db --json"))[0]["type"], 5);
  EXPECT_EQ(Json::parse(succeed("measure list wall.db --json"))[0]["id"], 1);
  EXPECT_TRUE(Json::parse(succeed("info wall.db --json"))["engine"]["page_size"].is_number());
  fs::copy_file(path("wall.db"), path("later.db"));
  succeed("coef put later.db --type 1 --at 2,0 a.npy");
  const Json difference = Json::parse(run("diff wall.db later.db --json").out)["differences"][0];
  EXPECT_EQ(difference["rect"], Json({2, 0, 3, 1}));
  EXPECT_EQ(difference["largest"], 0.5);
}

TEST_F(ReadingTest, NumbersOfAnySizeAreDrawnAndTold) {
  const double inf = HUGE_VAL;
  const double nan = std::nan("");
  const std::pair<std::vector<double>, const char*> cases[] = {
      {{1e308, -1e308}, "1e+308"}, {{inf, -inf}, ""},  {{nan, nan}, "0        -   -"},
      {{1e308, inf}, "1e+308"},    {{0, 5e-324}, "0"}, {{1000000.001, 1000000.002}, "1000000.002"}};
  succeed("create wall.db --type 0");
  succeed("screen add wall.db --name left --rect 0,0,1,0");
  for (const auto& [numbers, words] : cases) {
    write("x.npy", array("<f8", "1, 2", numbers));
    succeed("heatmap x.npy --force -o x.png");
    succeed("coef put wall.db --type 1 --at 0,0 x.npy");
    EXPECT_TRUE(contains(succeed("coef stats wall.db --type 1"), words));
  }
  EXPECT_FALSE(anythingUnfinished());
}

}  // namespace
