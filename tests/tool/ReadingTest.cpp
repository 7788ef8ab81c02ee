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
std::string bytesOf(const std::vector<Number>& numbers) {
  std::string bytes(numbers.size() * sizeof(Number), '\0');
  std::memcpy(bytes.data(), numbers.data(), bytes.size());
  return bytes;
}

struct ReadingTest : ToolTest {
  ReadingTest() {  // what the font library keeps for the whole process is not the program's to free
    write("leaks", "leak:libfontconfig\n");
    setenv("LSAN_OPTIONS", ("print_suppressions=0:suppressions=" + path("leaks")).c_str(), 1);
  }

  // A wall of 4 x 2 in two areas of 2 x 2, cells 0 to 7, with a scale and a unit.
  void makeAreas() const {
    succeed("create wall.db --type 0");
    succeed("screen add wall.db --name left --rect 0,0,5,1");
    write("a.npy", npy("<u2", "2, 2", bytesOf<std::uint16_t>({0, 1, 4, 5})));
    write("b.npy", npy("<u2", "2, 2", bytesOf<std::uint16_t>({2, 3, 6, 7})));
    for (const char* put : {"--at 0,0 a.npy", "--at 2,0 b.npy"}) {
      succeed(std::string("coef put wall.db --type 1 --scale 1/4 --unit cd/m2 ") + put);
    }
  }
};

TEST_F(ReadingTest, TheFormOfNumbersIsKeptAndNeverGuessed) {
  makeAreas();
  succeed("coef get wall.db --type 1 --rect 0,0,1,1 -o part.npy");
  EXPECT_EQ(read("part.npy"), npy("<u2", "2, 2, 1", bytesOf<std::uint16_t>({0, 1, 4, 5})));
  EXPECT_EQ(succeed("coef get wall.db --type 1 --rect 0,1,1,1 --csv -o -"), "column,row,value0\n0,1,1\n1,1,1.25\n");
  EXPECT_EQ(succeed("coef get wall.db --type 1 --rect 1,1,1,1 --csv --scale 1 -o -"), "column,row,value0\n1,1,5\n");

  write("cells", payload(8));
  const std::string raw = "coef put wall.db --type 2 --rect 0,0,1,0 --raw cells --cell-bytes 4 ";
  succeed(raw + "--version-text another --dtype float32");
  succeed(raw);  // what is kept stays
  EXPECT_NE(succeed("coef list wall.db").find("another [1 x float32]"), std::string::npos);
  succeed(raw + "--version-text plain");
  for (const char* command : {"coef stats wall.db --type 3", "heatmap wall.db --type 3 -o no.png",
                              "coef get wall.db --type 3 --rect 0,0,1,0 -o no.npy"}) {
    if (std::string(command).find("stats") != std::string::npos) {
      succeed("coef put wall.db --type 3 --rect 0,0,1,0 --raw cells --cell-bytes 4");
    }
    expectFailure(2, "say it with --dtype", command);
  }
  EXPECT_FALSE(fs::exists(path("no.png")) || fs::exists(path("no.npy")));
  expectFailure(2, "the array is of uint16", "coef put wall.db --type 1 --at 0,0 a.npy --dtype int16");
  expectFailure(2, "60 characters", "coef put wall.db --type 1 --at 0,0 a.npy --unit " + std::string(60, 'x'));
}

TEST_F(ReadingTest, SeveralAreasReadAsOneArray) {
  makeAreas();
  const std::string all = "coef get wall.db --type 1 --rect 0,0,3,1 ";
  expectFailure(1, "areas that overlap it: 1 (0,0..1,1), 2 (2,0..3,1); read across them with --mosaic",
                all + "-o x.npy");
  succeed(all + "--mosaic -o all.npy");
  EXPECT_EQ(read("all.npy"), npy("<u2", "2, 4, 1", bytesOf<std::uint16_t>({0, 1, 2, 3, 4, 5, 6, 7})));
  const std::string wider = "coef get wall.db --type 1 --rect 2,1,4,1 --mosaic --force -o x.npy";
  expectFailure(1, "no area covers 1 cells of 2,1..4,1, the first at 4,1", wider);
  EXPECT_NE(run(wider + " --fill 9").err.find("1 cells are covered by no area"), std::string::npos);
  EXPECT_EQ(read("x.npy"), npy("<u2", "1, 3, 1", bytesOf<std::uint16_t>({6, 7, 9})));
  expectFailure(2, "-1 is not a number of type uint16", wider + " --fill -1");

  write("c.npy", npy("<u2", "1, 3", bytesOf<std::uint16_t>({90, 91, 92})));
  succeed("coef put wall.db --type 1 --at 1,0 --scale 1/4 --unit cd/m2 --beside c.npy");
  const Outcome top = run("coef get wall.db --type 1 --rect 0,0,3,0 --mosaic --raw -o -");
  EXPECT_EQ(top.out, bytesOf<std::uint16_t>({0, 1, 2, 3})) << "the first stored counts";
  EXPECT_NE(top.err.find("areas overlap"), std::string::npos) << top.err;
  EXPECT_EQ(succeed("coef get wall.db --area 3 --raw -o -"), bytesOf<std::uint16_t>({90, 91, 92}));
  expectFailure(1, "there is no area 9", "coef get wall.db --area 9 -o no.npy");
}

TEST_F(ReadingTest, CabinetsHaveFiguresSeamsAndWorstCells) {
  makeAreas();
  const std::string stats = "coef stats wall.db --type 1 --rect 0,0,3,1 --mosaic --cabinet 2x2 ";
  const Json component = Json::parse(succeed(stats + "--json"))["components"][0];
  EXPECT_EQ(component["cabinets"][1]["rect"], Json({2, 0, 3, 1}));
  EXPECT_EQ(component["cabinets"][1]["mean"], 4.5 / 4);
  EXPECT_EQ(component["cabinets"][0]["at_ends"], Json({1, 0}));
  EXPECT_EQ(component["seams"][0]["difference"], 0.25);
  EXPECT_NE(succeed(stats).find("2,0..3,1  2,0..2,1        0.25"), std::string::npos) << succeed(stats);
  EXPECT_EQ(succeed(stats + "--csv seams"),
            "component,first_left,first_top,second_left,second_top,left,top,right,bottom,difference\n"
            "0,0,0,2,0,2,0,2,1,0.25\n");
  EXPECT_EQ(
      Json::parse(succeed("coef stats wall.db --type 1 --mosaic --by-area --json"))["components"][0]["cabinets"].size(),
      2U);
}

TEST_F(ReadingTest, EveryListHasJson) {
  makeAreas();
  succeed("data put wall.db --type 5 a.npy");
  succeed("measure put wall.db --type 3 --rect 0,0,1,1 a.npy");
  const Json area = Json::parse(succeed("coef list wall.db --json"))[1];
  EXPECT_EQ(area["rect"], Json({2, 0, 3, 1}));
  EXPECT_EQ(area["screen"], "left");
  EXPECT_EQ(area["type"], 1);
  EXPECT_EQ(area["scale"], 0.25);
  EXPECT_EQ(Json::parse(succeed("screen list wall.db --json"))[0]["columns"], 6);
  EXPECT_EQ(Json::parse(succeed("data list wall.db --json"))[0]["type"], 5);
  EXPECT_EQ(Json::parse(succeed("measure list wall.db --json"))[0]["id"], 1);
  EXPECT_TRUE(Json::parse(succeed("info wall.db --json"))["engine"]["page_size"].is_number());
  fs::copy_file(path("wall.db"), path("later.db"));
  succeed("coef put later.db --type 1 --at 2,0 a.npy");
  const Json difference = Json::parse(run("diff wall.db later.db --json").out)["differences"][0];
  EXPECT_EQ(difference["kind"], "block");
  EXPECT_EQ(difference["type"], 1);
  EXPECT_EQ(difference["rect"], Json({2, 0, 3, 1}));
  EXPECT_EQ(difference["largest"], 0.5);
}

TEST_F(ReadingTest, NumbersOfAnySizeAreDrawnAndTold) {
  const double inf = HUGE_VAL;
  const std::vector<double> cases[] = {
      {1e308, -1e308}, {inf, -inf}, {std::nan(""), std::nan("")}, {1e308, inf}, {0, 5e-324}};
  succeed("create wall.db --type 0");
  succeed("screen add wall.db --name left --rect 0,0,1,0");
  for (const auto& numbers : cases) {
    write("x.npy", npy("<f8", "1, 2", bytesOf(numbers)));
    succeed("heatmap x.npy --force -o x.png");
    succeed("coef put wall.db --type 1 --at 0,0 x.npy");
    succeed("coef stats wall.db --type 1");
  }
  for (const auto& entry : fs::directory_iterator(folder_)) {
    EXPECT_EQ(entry.path().string().find("unfinished"), std::string::npos) << entry.path();
  }
  write("x.npy", npy("<f8", "1, 2", bytesOf<double>({std::nan(""), std::nan("")})));
  succeed("coef put wall.db --type 1 --at 0,0 x.npy");
  EXPECT_NE(succeed("coef stats wall.db --type 1").find("0        -   -"), std::string::npos);
  write("x.npy", npy("<f8", "1, 2", bytesOf<double>({1000000.001, 1000000.002})));
  succeed("coef put wall.db --type 1 --at 0,0 x.npy");
  const std::string stats = succeed("coef stats wall.db --type 1");
  EXPECT_NE(stats.find("1000000.001"), std::string::npos) << stats;
  EXPECT_NE(stats.find("1000000.002"), std::string::npos) << stats;
  expectFailure(1, "lies outside every screen; screens: left (0,0..1,0)",
                "heatmap wall.db --type 1 --rect 50,50,59,59 -o no.png");
}

}  // namespace
