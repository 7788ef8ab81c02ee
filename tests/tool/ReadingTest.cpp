// What the program reads out of databases: numbers in their kept form, cells across areas, cabinets, lists.
#include <cmath>
#include <cstring>
#include <nlohmann/json.hpp>
#include <vector>

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
  expectFailure(2, "the array is of uint16", "coef put wall.db --type 1 --at 0,0 a.npy --dtype int16");
  expectFailure(2, "60 characters", "coef put wall.db --type 1 --at 0,0 a.npy --unit " + std::string(60, 'x'));
}

TEST_F(ReadingTest, SeveralAreasReadAsOneArray) {
  makeAreas();
  expectFailure(1, "areas that overlap it: 1 (0,0,1,1), 2 (2,0,3,1); read across them with --mosaic",
                kGet + "--rect 0,0,3,1 -o x.npy");
  succeed(kGet + "--rect 0,0,3,1 --mosaic -o all.npy");
  EXPECT_EQ(read("all.npy"), uint16Array("2, 4, 1", {0, 1, 2, 3, 4, 5, 6, 7}));
  const std::string wider = kGet + "--rect 2,1,4,1 --mosaic --force -o x.npy";
  expectFailure(1, "no area covers 1 cells of 2,1,4,1, the first at 4,1", wider);
  expectTold("1 cells are covered by no area", wider + " --fill 9");
  EXPECT_EQ(read("x.npy"), uint16Array("1, 3, 1", {6, 7, 9}));
  expectFailure(2, "-1 is not a number of type uint16", wider + " --fill -1");

  write("c.npy", uint16Array("1, 3", {90, 91, 92}));
  succeed(kPut + "--at 1,0 --beside c.npy");
  expectTold("areas overlap", kGet + "--rect 0,0,3,0 --mosaic -o top.npy");
  EXPECT_EQ(read("top.npy"), uint16Array("1, 4, 1", {0, 1, 2, 3})) << "the first stored counts";
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
  const Json byArea = Json::parse(succeed("coef stats wall.db --type 1 --mosaic --by-area --json"));
  EXPECT_EQ(byArea["components"][0]["cabinets"].size(), 2U);
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
