// The commands about whole files: check, export and import, rekey, encrypt and decrypt.
#include <gtest/gtest.h>

#include "client/checks/Check.h"
#include "tests/support/DatabaseContent.h"
#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;
using tovrdb::Findings;

constexpr char kManifest[] = "folder/manifest.json";

// wall.db has a screen with an area of two kinds, data and a measurement.
struct FileCommandTest : ToolTest {
  FileCommandTest() {
    makeWall();
    write("a.npy", npy("<u2", "4, 8", payload(64)));
    write("text", "some text\n");
    succeed("coef put wall.db --type 1 --at 0,0 a.npy");
    succeed("coef put wall.db --type 2 --at 0,0 a.npy");
    succeed("data put wall.db --type 5 text");
    succeed("measure put wall.db --type 3 --rect 0,0,7,3 text");
  }

  void change(const std::string& statement) const { sql(path("wall.db"), statement); }
  bool engineIsNewer() const { return succeed("info wall.db").find("page encryption    4.") != std::string::npos; }
};

TEST_F(FileCommandTest, Check_NamesFaultsAndWarnings) {
  const struct {
    const char* sql;
    const char* check;
    const char* words;
  } faults[] =
      {
          {"update Coef set databitwidth = 3 where id = 1", "block lengths",
           "area 1 (0,0,7,3 of type 1 on screen left): its block has 64 bytes and not 8 x 4 x 3"},
          {"update Coef_Info set right = -3 where id = 1", "block lengths",
           "of type 1 on screen left): its rectangle holds"},
          {"update Coef set data = x'0011223344556677' where id = 2", "blobs",
           "area 2 (0,0,7,3 of type 2 on screen left): 4106"},
          {"update LumChromData set data = x'00'", "blobs", "measurement 1: 4106"},
          {"update Data set data = x'00'", "blobs", "data of type 5: 4106"},
          {"delete from Screen_Info", "foreign keys", "area 2 (0,0,7,3 of type 2) refers to a row of Screen_Info"},
          {"update Screen_Info set top = 'abc'", "screens", "screen left: top is 'abc', which is not a whole number"},
          {"create trigger sqlitespoil after update on Coef begin delete from Coef; end", "schema",
           "the trigger sqlitespoil on Coef"},
          {"create view spy as select * from Coef", "schema", "the view spy"},
          {"create unique index one on Coef_Info(coeftype)", "schema", "the unique index one on Coef_Info can refuse"},
      },
    warnings[] = {
        {"insert into Coef select 9, data, databitwidth, version from Coef where id = 1", "blobs",
         "block 9 is used by nothing"},
        {"update Screen_Info set right = 6", "areas in screens", "on screen left) reaches beyond its screen (0,0,6,3)"},
        {"update Coef_Info set coeftype = 1", "overlaps",
         "area 1 (0,0,7,3 of type 1 on screen left) and area 2 (0,0,7,3 of type 1 on screen left) overlap"},
        {"insert into Screen_Info select 2, dbid, 'other', top, left, bottom, right - 1, ctime, mtime from Screen_Info",
         "screens", "screen other lies in the rectangle of screen left"},
        {"update sqlite_sequence set seq = 1 where name = 'Coef'", "key counters", "the counter says 1"},
        {"create table another(x)", "schema", "the table another was made by another program"},
        {"create index fast on Coef_Info(coeftype)", "schema", "the index fast on Coef_Info"},
    };
  expectSound("wall.db");
  const auto expect = [&](const auto& c, int code, const std::string& word) {
    fs::copy_file(path("wall.db"), path("bad.db"), fs::copy_options::overwrite_existing);
    sql(path("bad.db"), c.sql);
    const Outcome outcome = run("check bad.db");
    EXPECT_EQ(outcome.code, code) << c.sql;
    EXPECT_TRUE(contains(outcome.out, word + c.check));
    EXPECT_TRUE(contains(outcome.out, c.words));
    std::size_t sound = 0;
    for (std::size_t at = 0; (at = outcome.out.find("ok      ", at)) != std::string::npos; ++at) ++sound;
    EXPECT_EQ(sound, 9U) << "all other checks pass:\n" << outcome.out;
  };
  for (const auto& c : faults) expect(c, 8, "failed  ");
  for (const auto& c : warnings) expect(c, 0, "warning ");
  EXPECT_TRUE(contains(run("check bad.db --json").out, "\"ok\": true"));
}

TEST(FindingsTest, ManyAreCounted) {
  Findings findings;
  for (std::size_t i = 0; i <= Findings::kMostKept; ++i) findings.add(std::to_string(i));
  findings.addCounted(7998989);
  EXPECT_EQ(findings.count(), 7999090U);
  EXPECT_EQ(findings.kept().size(), Findings::kMostKept);
  EXPECT_EQ(findings.first(1), (std::vector<std::string>{"0", "and 7,999,089 more"}));
  EXPECT_TRUE(Findings().first(1).empty());
}

TEST_F(FileCommandTest, FilesThatAreNoDatabaseAreToldApart) {
  const std::string whole = read("wall.db");
  const struct {
    std::string bytes;
    const char* words;
    int code = 3;
  } cases[] = {
      {"", "is empty"},
      {"SQLite format 3" + std::string(1009, '\0'), "not an encrypted one"},
      {read("a.npy"), "a NumPy array"},
      {std::string(4096, 'a'), "a text"},
      {std::string(4096, '\0'), "mostly with zeros", 8},
      {whole.substr(0, whole.size() - 4096), "truncated", 8},
  };
  for (const auto& c : cases) {
    write("bad.db", c.bytes);
    const Outcome outcome = run("check bad.db");
    EXPECT_EQ(outcome.code, c.code) << c.words;
    EXPECT_TRUE(contains(outcome.out, c.words));
    expectFailure(c.code, c.words, "info bad.db");
  }
  expectFailure(3, "there is no such file", "info missing.db");
  EXPECT_FALSE(fs::exists(path("missing.db")));
}

TEST_F(FileCommandTest, PagesThatAreDamagedOrCutOffFail) {
  const std::string whole = read("wall.db");
  std::string flipped = whole;
  flipped[whole.size() / 2] = static_cast<char>(flipped[whole.size() / 2] ^ 1);
  write("bad.db", flipped);
  EXPECT_TRUE(contains(run("check bad.db").out, "failed  pages"));
  write("bad.db", whole.substr(0, whole.size() - 100));  // a newer engine opens it as long as page 1 is there
  EXPECT_TRUE(contains(run("check bad.db").out, engineIsNewer() ? "failed  pages" : "not a whole number of pages"));
}

TEST_F(FileCommandTest, KeysComeFromTheEnvironmentOrAFileAndAreToldWhereTheyDoNotFit) {
  expectFailure(4, "the key is wrong", "info wall.db", "TOVRDB_KEY=another ");
  expectFailure(4, "begins with a byte order mark", "info wall.db", "TOVRDB_KEY='\xEF\xBB\xBFthe test key' ");
  expectFailure(4, "no key", "info wall.db", kNoKey);
  expectFailure(4, "the key is empty", "info wall.db", "TOVRDB_KEY= ");
  write("key", "the test key\r\nand a note\n");
  EXPECT_EQ(run("info wall.db --key-file key", "TOVRDB_KEY=another ").code, 0);
  expectFailure(4, "ends with a line break", "info wall.db", "TOVRDB_KEY=$(printf 'the test key\\r') ");
  write("marked", "\xEF\xBB\xBFthe test key");
  expectFailure(4, "key file marked begins with a byte order mark", "info wall.db --key-file marked");
}

TEST_F(FileCommandTest, FilesOfTheOlderEngineAreToldAndUpgraded) {
  fs::copy_file(TOVR_TEST_DATA "/files/by-rectangle.db", path("old.db"));
  const std::string stored = everything(path("old.db"));
  EXPECT_TRUE(contains(succeed("info old.db"), "generation         3.x"));
  if (!engineIsNewer()) {
    expectFailure(1, "SQLCipher 3.x, which makes no newer files", "upgrade old.db");
    return;
  }
  succeed("upgrade old.db");
  EXPECT_TRUE(contains(succeed("info old.db"), "generation         4.x"));
  EXPECT_EQ(everything(path("old.db")), stored);
  expectTold("nothing to do", "upgrade old.db");
}

TEST_F(FileCommandTest, WhatIsExportedComesBackInEveryValue) {
  change("insert into Screen_Info values (7, 1, null, -1, 2.5, 9223372036854775807, '4 o''clock', 0, x'00ff')");
  change("update Coef_Info set multilayerlist = x'0100000002000000', multilayersize = 2 where id = 1");
  change("update Coef set version = cast(x'ff6100' as text), data = x'0102' where id = 2");  // damaged
  change("insert into Data values (9, x'', 'empty')");
  change("update sqlite_sequence set seq = 99 where name = 'Data'");
  succeed("export wall.db folder --dtype uint16");
  EXPECT_EQ(read("folder/Coef-1.npy"), npy("<u2", "4, 8, 1", payload(64)));
  succeed("import folder copy.db");
  EXPECT_EQ(everything(path("copy.db")), everything(path("wall.db")));

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
  std::string manyKeys = "{";
  for (int i = 0; i < 60000; ++i) manyKeys += "\"" + std::to_string(i) + "\": 0, ";
  const struct {
    std::string from;
    std::string to;
    const char* words;
  } cases[] = {
      {"\"Data-1.bin\"", "\"../text\"", "leads out of"},
      {"\"Data-1.bin\"", "\"" + path("text") + "\"", "leads out of"},
      {"\"Data-1.bin\"", "\"link.bin\"", "is not a file in"},
      {"\"databitwidth\": 2", "\"databitwidth\": 4", "2 bytes per cell, its row says 4"},
      {"\"databitwidth\"", "\"x) values(1); --\"", "\"databitwidth\" is missing"},
      {"\"screenname\": \"left\"", "\"screenname\": [\"left\"]", "a kind that no table holds"},
      {good, std::string(100000, '['), "too deeply"},
      {good, good.substr(0, good.size() / 2), "is not valid JSON: line "},
      {good, manyKeys + "\"\": 0}", "more than 1000 members"},
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
  const std::string before = everything(path("wall.db"));
  const std::string bytes = read("wall.db");
  expectFailure(4, "no key: give --new-key-file", "rekey wall.db");
  expectFailure(3, "10: ", "rekey wall.db", "prlimit --fsize=8192 env TOVRDB_NEW_KEY=other " + std::string(kKey));
  EXPECT_TRUE(read("wall.db") == bytes);
  const std::string newKey = "it's \"quoted\"; --";
  write("new", newKey + "\n");
  const Outcome outcome = run("rekey wall.db --new-key-file new --verbose");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_EQ((outcome.out + outcome.err).find(newKey), std::string::npos);
  expectFailure(4, "26", "info wall.db");
  expectSound("wall.db --key-file new");
  EXPECT_EQ(everything(path("wall.db"), newKey), before);
  EXPECT_FALSE(anythingUnfinished());
}

TEST_F(FileCommandTest, Names_OfTheEngineAndStreams) {
  succeed("export wall.db folder");
  for (const char* command : {"backup wall.db wall.db-journal", "create x.db-WAL --type 0", "import folder x.db-shm",
                              "export wall.db wall.db-wal", "--log wall.db-wal info wall.db",
                              "coef get wall.db --type 1 --rect 0,0,7,3 -o wall.db-journal --force"}) {
    expectFailure(2, "names that end in -", command);
  }
  for (const char* command :
       {"backup wall.db -", "create - --type 0", "import folder /dev/stdout", "export wall.db -"}) {
    expectFailure(2, "does not write to standard output", command);
  }
  EXPECT_FALSE(anythingUnfinished() || fs::exists(path("wall.db-wal")) || fs::exists(path("-")));
}

TEST_F(FileCommandTest, Disk_FileCannotGrow) {
  const std::string before = everything(path("wall.db"));
  write("big", std::string(200000, 'a'));
  const std::string limited = std::string(kKey) + "prlimit --fsize=100000 env ";
  expectFailure(3, "nothing was changed", "data put wall.db --type 6 big", limited);
  EXPECT_FALSE(anythingUnfinished());
  EXPECT_EQ(everything(path("wall.db")), before);
  succeed("data put wall.db --type 6 big");
  expectFailure(9, "cannot write the copy", "backup wall.db copy.db", limited);
  expectFailure(3, "nothing was changed", "rekey wall.db --new-key-file text", limited);
  EXPECT_FALSE(anythingUnfinished());
  expectSound("wall.db");
}

TEST_F(FileCommandTest, Rewrite_ForeignNames) {
  change("create table \"order \"\"by\"(\"group\" text)");
  change("insert into \"order \"\"by\" values ('kept')");
  change("alter table Data add column \"select \"\"from\" text default 'kept too'");
  EXPECT_TRUE(contains(succeed("info wall.db"), "Data"));
  succeed("export wall.db folder");
  EXPECT_TRUE(contains(read(kManifest), "kept too"));
  EXPECT_EQ(run("rekey wall.db", "TOVRDB_NEW_KEY=other " + std::string(kKey)).code, 0);
  EXPECT_EQ(sql(path("wall.db"), "select * from \"order \"\"by\"", "other"), "kept\n");
  EXPECT_EQ(sql(path("wall.db"), "select \"select \"\"from\" from Data", "other"), "kept too\n");
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
  expectFailure(3, "cannot create /proc/target", "encrypt text /proc/target", key);
  expectFailure(4, "the key or the vector is wrong", "decrypt cipher back --force", "TOVRDB_CIPHER_KEY=abcdefgh ");
  expectFailure(4, "3 characters, not 8", "decrypt cipher other", "TOVRDB_CIPHER_KEY=abc ");
  EXPECT_EQ(read("back"), text);
  EXPECT_FALSE(fs::exists(path("other")));
  write("plant", "ln -s back other.unfinished-$$.temp; ln -s back other.unfinished-$$; exec \"$@\"");
  EXPECT_EQ(run("decrypt cipher other", key + "sh plant env ").code, 0);
  EXPECT_EQ(run("decrypt cipher other --force", key + "sh plant env ").code, 0);
  EXPECT_EQ(read("back"), text);
  EXPECT_EQ(read("other"), text);
}

TEST_F(FileCommandTest, Cleartext_IsForItsOwnerOnly) {
  EXPECT_EQ(run("encrypt text cipher", "TOVRDB_CIPHER_KEY=12345678 ").code, 0);
  const std::string key = "TOVRDB_CIPHER_KEY=12345678 " + std::string(kKey);
  for (const std::string command :
       {"coef get wall.db --type 1 --rect 0,0,7,3 -o out", "data get wall.db --type 5 -o out",
        "measure get wall.db --id 1 -o out", "heatmap wall.db --type 1 -o out", "report wall.db -o out",
        "diff wall.db wall.db --type 1 --heatmap out", "sample --size 1x1 -o out", "decrypt cipher out"}) {
    write("out", "what others read so far");
    fs::permissions(path("out"), fs::perms{0644});
    EXPECT_EQ(run(command + " --force", key).code, 0) << command;
    EXPECT_EQ(modeOf("out"), 0600U) << command;
    EXPECT_EQ(run(command + " --force --mode 0664", key).code, 0) << command;
    EXPECT_EQ(modeOf("out"), 0664U) << command;
  }
  for (const auto& [option, folder, file] : {std::tuple("", 0700U, 0600U), {" --force --mode 640", 0750U, 0640U}}) {
    succeed("export wall.db folder" + std::string(option));
    EXPECT_EQ(modeOf("folder"), folder);
    EXPECT_EQ(modeOf(kManifest), file);
    EXPECT_EQ(modeOf("folder/Data-1.bin"), file);
  }
  expectFailure(2, "the owner could not", "data get wall.db --type 5 -o new --mode 0444");
  expectFailure(2, "is not an octal number", "data get wall.db --type 5 -o new --mode 0o644");
}

}  // namespace
