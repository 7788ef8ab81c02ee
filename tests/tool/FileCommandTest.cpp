// The commands about whole files: check, export and import, rekey, encrypt and decrypt, many blocks at once.
#include <gtest/gtest.h>

#include <csignal>
#include <thread>
#include <vector>

#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;

constexpr char kManifest[] = "folder/manifest.json";

struct FileCommandTest : ToolTest {
  // A screen with an area of two kinds, data and a measurement.
  FileCommandTest() {
    makeWall();
    write("a.npy", npy("<u2", "4, 8", payload(64)));
    write("text", "some text\n");
    succeed("coef put wall.db --type 1 --at 0,0 a.npy");
    succeed("coef put wall.db --type 2 --at 0,0 a.npy");
    succeed("data put wall.db --type 5 text");
    succeed("measure put wall.db --type 3 --rect 0,0,7,3 text");
  }

  std::string sql(const std::string& name, const std::string& statement) const {
    return tovrtest::sql(path(name), statement, "the test key");
  }
  bool engineIsNewer() const { return succeed("info wall.db").find("page encryption    4.") != std::string::npos; }
  std::string everything(const std::string& name, const std::string& key = "the test key") const {
    return tovrtest::everything(path(name), key);
  }
  void copy(const std::string& to) const {
    fs::copy_file(path("wall.db"), path(to), fs::copy_options::overwrite_existing);
  }

  bool anythingUnfinished() const {
    for (const auto& entry : fs::directory_iterator(folder_)) {
      const std::string name = entry.path().filename().string();
      for (const char* sign : {"unfinished", "-journal", ".temp"}) {
        if (name.find(sign) != std::string::npos) return true;
      }
    }
    return false;
  }
};

TEST_F(FileCommandTest, CheckFindsEachPlantedFault) {
  EXPECT_EQ(succeed("check wall.db").find("failed"), std::string::npos);
  const struct {
    const char* sql;
    const char* check;
    const char* words;
  } cases[] = {
      {"update Coef set databitwidth = 3 where id = 1", "block lengths", "has 64 bytes and not 8 x 4 x 3"},
      {"update Coef set data = x'0011223344556677' where id = 2", "blobs", "row 2 of Coef: 4106"},
      {"update LumChromData set data = x'00'", "blobs", "row 1 of LumChromData: 4106"},
      {"update Screen_Info set right = 6", "areas in screens", "area 1 (0,0..7,3) leaves its screen 1 (0,0..6,3)"},
      {"update Coef_Info set coeftype = 1", "overlaps", "area 1 (0,0..7,3) and area 2 (0,0..7,3) of screen 1"},
      {"delete from Screen_Info", "foreign keys", "row 2 of Coef_Info refers to a row of Screen_Info"},
      {"update sqlite_sequence set seq = 1 where name = 'Coef'", "key counters", "the counter says 1"},
      {"create table another(x)", "schema", "a tenth table, another"},
  };
  for (const auto& c : cases) {
    copy("bad.db");
    sql("bad.db", c.sql);
    const Outcome outcome = run("check bad.db");
    EXPECT_EQ(outcome.code, 1) << c.sql;
    EXPECT_NE(outcome.out.find(std::string("failed  ") + c.check), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find(c.words), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find("failed"), outcome.out.rfind("failed")) << "one fault, one verdict:\n" << outcome.out;
    EXPECT_NE(run("check bad.db --json").out.find("\"ok\": false"), std::string::npos);
  }
}

TEST_F(FileCommandTest, CheckTellsWhyAFileDoesNotOpen) {
  const std::string whole = read("wall.db");
  std::string flipped = whole;
  flipped[whole.size() / 2] = static_cast<char>(flipped[whole.size() / 2] ^ 1);
  const bool newer = engineIsNewer();
  struct Case {
    std::string bytes;
    int code;
    const char* words;
    const char* key;
  };
  const Case cases[] = {
      {whole, 4, "the key is wrong", "TOVRDB_KEY=another "},
      newer ? Case{whole.substr(0, whole.size() - 100), 1, "failed  pages", kKey}  // opens as long as page 1 is there
            : Case{whole.substr(0, whole.size() - 100), 3, "not a whole number of pages", kKey},
      {whole.substr(0, whole.size() - 4096), 3, "truncated", kKey},
      {"", 3, "is empty", kKey},
      {"SQLite format 3" + std::string(1009, '\0'), 3, "not an encrypted one", kKey},
      {npy("<u2", "4, 8", payload(64)), 3, "a NumPy array", kKey},
      {std::string(4096, '\0'), 3, "mostly with zeros", kKey},
      {std::string(4096, 'a'), 3, "a text", kKey},
      {flipped, 1, "failed  pages", kKey},
  };
  for (const auto& c : cases) {
    write("bad.db", c.bytes);
    const Outcome outcome = run("check bad.db", c.key);
    EXPECT_EQ(outcome.code, c.code) << c.words << outcome.out;
    EXPECT_NE(outcome.out.find(c.words), std::string::npos) << outcome.out;
  }
}

TEST_F(FileCommandTest, FilesOfTheOlderEngineAreToldAndUpgraded) {
  fs::copy_file(TOVR_TEST_DATA "/files/by-rectangle.db", path("old.db"));
  const std::string stored = everything("old.db");
  EXPECT_NE(succeed("info old.db").find("generation         3.x"), std::string::npos);
  if (!engineIsNewer()) {
    expectFailure(1, "SQLCipher 3.x, which makes no newer files", "upgrade old.db");
    return;
  }
  succeed("upgrade old.db");
  EXPECT_NE(succeed("info old.db").find("generation         4.x"), std::string::npos);
  EXPECT_EQ(everything("old.db"), stored);
  EXPECT_NE(run("upgrade old.db").err.find("nothing to do"), std::string::npos);
}

TEST_F(FileCommandTest, WhatIsExportedComesBackInEveryValue) {
  sql("wall.db", "insert into Screen_Info values (7, 1, null, -1, 2.5, 9223372036854775807, '4 o''clock', 0, x'00ff')");
  sql("wall.db", "update Coef_Info set multilayerlist = x'0100000002000000', multilayersize = 2 where id = 1");
  sql("wall.db", "update Coef set version = cast(x'ff6100' as text), data = x'0102' where id = 2");  // damaged
  sql("wall.db", "insert into Data values (9, x'', 'empty')");
  sql("wall.db", "update sqlite_sequence set seq = 99 where name = 'Data'");
  succeed("export wall.db folder --dtype uint16");
  EXPECT_EQ(read("folder/Coef-1.npy"), npy("<u2", "4, 8, 1", payload(64)));
  succeed("import folder copy.db");
  EXPECT_EQ(everything("copy.db"), everything("wall.db"));

  expectFailure(3, "exists already", "export wall.db folder");
  expectFailure(3, "exists already", "import folder copy.db");
  succeed("export wall.db folder --force");
  write("folder/mine", "precious");
  expectFailure(3, "holds mine", "export wall.db folder --force");
  EXPECT_EQ(read("folder/mine"), "precious");
  EXPECT_FALSE(anythingUnfinished());
}

TEST_F(FileCommandTest, HostileManifestsAreRefusedAndTheOldFileStays) {
  succeed("export wall.db folder");
  fs::create_symlink(path("text"), path("folder/link.bin"));
  const std::string before = read("wall.db");
  const std::string good = read(kManifest);
  const struct {
    std::string from;
    std::string to;
    const char* words;
  } cases[] = {
      {"\"Data-1.bin\"", "\"../text\"", "does not lie in"},
      {"\"Data-1.bin\"", "\"" + path("text") + "\"", "does not lie in"},
      {"\"Data-1.bin\"", "\"link.bin\"", "is not a file in"},
      {"\"Data-1.bin\"", "\"gone.bin\"", "gone.bin"},
      {"\"databitwidth\": 2", "\"databitwidth\": 4", "2 bytes per cell, its row says 4"},
      {"\"databitwidth\"", "\"x) values(1); --\"", "\"databitwidth\" is missing"},
      {"\"screenname\": \"left\"", "\"screenname\": [\"left\"]", "a kind that no table holds"},
      {"\"Screen_Info\": [", "\"Screen_Info\": 1, \"x\": [", "is not a list"},
      {good, std::string(100000, '['), "too deeply"},
      {good, good.substr(0, good.size() / 2), "is not valid JSON"},
  };
  for (const auto& c : cases) {
    std::string manifest = good;
    write(kManifest, manifest.replace(manifest.find(c.from), c.from.size(), c.to));
    expectFailure(3, c.words, "import folder wall.db --force");
  }
  EXPECT_TRUE(read("wall.db") == before);
  EXPECT_FALSE(anythingUnfinished());
}

TEST_F(FileCommandTest, RekeyChangesTheKeyAndNothingElse) {
  const std::string before = everything("wall.db");
  const std::string bytes = read("wall.db");
  expectFailure(4, "no key: give --new-key-file", "rekey wall.db");
  expectFailure(1, "10: ", "rekey wall.db", "prlimit --fsize=8192 env TOVRDB_NEW_KEY=other " + std::string(kKey));
  EXPECT_TRUE(read("wall.db") == bytes);
  const std::string newKey = "it's \"quoted\"; --";
  write("new", newKey + "\n");
  const Outcome outcome = run("rekey wall.db --new-key-file new --verbose");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  for (const std::string& key : {newKey, std::string("the test key")}) {
    EXPECT_EQ((outcome.out + outcome.err).find(key), std::string::npos);
  }
  expectFailure(4, "26", "info wall.db");
  EXPECT_EQ(run("check wall.db --key-file new").code, 0);
  EXPECT_EQ(everything("wall.db", newKey), before);
  EXPECT_FALSE(anythingUnfinished());
}

TEST_F(FileCommandTest, TextsAreEncryptedAndBinaryFilesRefused) {
  const std::string key = "TOVRDB_CIPHER_KEY=12345678 ";
  std::string text;
  while (text.size() < 1500) text += "a line of text\n";
  write("long", text);
  EXPECT_EQ(run("encrypt long cipher", key).code, 0);
  EXPECT_EQ(read("cipher").find("text"), std::string::npos);
  EXPECT_EQ(run("decrypt cipher back", key).code, 0);
  EXPECT_EQ(read("back"), text);
  expectFailure(3, "exists already", "encrypt text back", key);
  expectFailure(3, "is not a text", "encrypt wall.db other", key);
  expectFailure(4, "the key or the vector is wrong", "decrypt cipher back --force", "TOVRDB_CIPHER_KEY=abcdefgh ");
  expectFailure(4, "3 characters, not 8", "decrypt cipher other", "TOVRDB_CIPHER_KEY=abc ");
  EXPECT_EQ(read("back"), text);
  EXPECT_FALSE(fs::exists(path("other")) || anythingUnfinished());
}

TEST_F(FileCommandTest, ManyBlocksAreStoredTogetherOrNotAtAll) {
  const std::string before = everything("wall.db");
  fs::create_directory(path("blocks"));
  write("blocks/T7_0,0,7,3.npy", npy("<u2", "4, 8", payload(64)));
  write("blocks/T8_0,0,8,3.npy", npy("<u2", "4, 9", payload(72)));
  expectFailure(1, "T8_0,0,8,3.npy: 4116", "coef put wall.db --folder blocks");
  EXPECT_EQ(everything("wall.db"), before);
  fs::rename(path("blocks/T8_0,0,8,3.npy"), path("blocks/b.npy"));
  expectFailure(3, "is not named", "coef put wall.db --folder blocks");
  write("blocks/list.json", R"([{"file": "b.npy", "type": 8, "rect": [0, 0, 7, 3]}])");
  expectFailure(3, "does not fit the rectangle", "coef put wall.db --manifest blocks/list.json");
  write("blocks/list.json", R"([{"file": "../a.npy", "type": 8, "rect": [0, 0, 7, 3]}])");
  expectFailure(3, "does not lie in", "coef put wall.db --manifest blocks/list.json");
  EXPECT_EQ(everything("wall.db"), before);
  fs::remove(path("blocks/b.npy"));
  succeed("coef put wall.db --folder blocks");
  EXPECT_EQ(succeed("coef get wall.db --type 7 --rect 0,0,7,3 --raw -o -"), payload(64));
}

TEST_F(FileCommandTest, ATerminalShowsTheWorkAndAPipeDoesNot) {
  succeed("create big.db --type 0");
  succeed("screen add big.db --name big --rect 0,0,511,511");
  write("b.npy", npy("|u1", "512, 512, 9", payload(512 * 512 * 9)));
  write("list.json", R"([{"file": "b.npy", "type": 1, "rect": [0, 0, 511, 511]}])");
  const std::string command = "coef put big.db --manifest list.json";
  EXPECT_EQ(run(command).err, "tovrdb: stored 1 blocks\n");
  EXPECT_EQ(run("--quiet " + command).err, "");
  const auto onTerminal = [&](const std::string& environment) {
    const std::string line = "cd '" + folder_.string() + "' && unset NO_COLOR && TERM=xterm " + environment + kKey +
                             "TOVRDB_PLUGIN='" TOVR_PLUGIN_FILE "' script -qec \"'" TOVRDB_PROGRAM "' " + command +
                             "\" /dev/null >typed </dev/null";
    EXPECT_EQ(std::system(line.c_str()), 0);
    return read("typed");
  };
  EXPECT_NE(onTerminal("").find("coef put [####"), std::string::npos);
  EXPECT_EQ(onTerminal("NO_COLOR=1 ").find('['), std::string::npos);
}

TEST_F(FileCommandTest, AnInterruptLeavesNothingUnfinished) {
  const std::string output = path("large.npy");
  const pid_t child = fork();
  if (child == 0) {
    execl(TOVRDB_PROGRAM, "tovrdb", "--quiet", "sample", "--size", "20000x20000", "-o", output.c_str(), nullptr);
    _exit(127);
  }
  int status = 0;
  pid_t ended = 0;
  while (!anythingUnfinished() && (ended = waitpid(child, &status, WNOHANG)) == 0) std::this_thread::yield();
  ASSERT_EQ(ended, 0) << "it has ended by itself: " << status;
  kill(child, SIGINT);
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
  EXPECT_FALSE(fs::exists(output) || anythingUnfinished());
}

}  // namespace
