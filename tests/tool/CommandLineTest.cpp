// What a process is: its streams, its terminal, its signals, its exit codes, and the words that it has for a command
// line without sense.
#include <fcntl.h>
#include <fmt/core.h>
#include <gtest/gtest.h>
#include <pty.h>

#include <csignal>
#include <thread>

#include "client/base/Interrupt.h"
#include "client/base/Json.h"
#include "client/disk/FileOutput.h"
#include "tests/tool/ToolFixture.h"
#include "tool/io/Message.h"

namespace {

using namespace tovrtest;

TEST_F(ToolTest, ATargetThatIsOpenAlreadyIsWrittenToAndNotReplaced) {
  makeWall();
  succeed("coef put wall.db --type 1 --rect 0,0,7,3 --raw cells --cell-bytes 2");
  const std::string get = "coef get wall.db --type 1 --rect 0,0,7,3 --raw -o ";
  for (const char* name : {"/dev/stdout", "/proc/self/fd/1", "/dev/fd/1"}) {
    EXPECT_EQ(succeed(get + name), payload(64)) << name;
    EXPECT_EQ(succeed(get + name + " | cat"), payload(64)) << name;
  }
  write("kept", "before ");
  succeed(get + "/dev/fd/7 7>>kept");
  EXPECT_EQ(read("kept"), "before " + payload(64));
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const int reader = ::open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  succeed(get + "pipe");
  char piped[100];
  EXPECT_EQ(::read(reader, piped, sizeof piped), 64);
  ::close(reader);
  EXPECT_TRUE(fs::is_fifo(path("pipe")));
}

TEST_F(ToolTest, UsageErrors_NameTheRemedy) {
  const struct {
    const char* arguments;
    const char* words;
    const char* command;
  } cases[] = {
      {"", "name a command: inspect, create", ""},
      {"coefs", "there is no command coefs; did you mean coef?", ""},
      {"store", "there is no command store; there are inspect, create", ""},
      {"coef sats", "there is no command coef sats; did you mean stats?", "coef "},
      {"coef", "coef takes one of put", "coef "},
      {"coef list --typ 1", "coef list has no option --typ; did you mean --type?", "coef list "},
      {"coef get a.db --tpye=1 -o b", "coef get has no option --tpye; did you mean --type?", "coef get "},
      {"--patches info a.db", "info has no option --patches", "info "},
      {"coef get a.db --type 1", "--output is required", "coef get "},
      {"info a.db b.db", "'b.db' is one argument too many: info takes FILE", "info "},
      {"info", "FILE is required", "info "},
      {"create a.db --type one", "--type takes one of 0, 1; got 'one'", "create "},
      {"coef get a.db --type one -o b", "--type takes a whole number; got 'one'", "coef get "},
      {"coef get a.db --type 99999999999 -o b", "--type takes a smaller whole number; got", "coef get "},
      {"coef get a.db -o b --type", "--type takes a value: INT", "coef get "},
      {"diff a.db b.db --atol -1", "--atol must be at least 0; got -1", "diff "},
      {"diff a.db b.db --atol x", "--atol takes a number; got 'x'", "diff "},
      {"info a.db --wait 1.5", "--wait must be a whole number from 0 to 86400; got '1.5'", "info "},
      {"sample --seed -1 -o x.npy", "--seed must be at least 0; got -1", "sample "},
      {"sample -o x.npy -o y.npy", "--output is given 2 times; give it once", "sample "},
  };
  for (const auto& c : cases) {
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.code, 2) << c.arguments;
    EXPECT_TRUE(contains(outcome.err, c.words)) << c.arguments;
    EXPECT_TRUE(contains(outcome.err, "\ntovrdb: tovrdb " + std::string(c.command) + "--help")) << outcome.err;
  }
  expectFailure(9, "--force does it anyway", "sample --size 2147483647x2147483647 -o x.npy");
  EXPECT_FALSE(fs::exists(path("x.npy")));
}

TEST(TextTest, Printable_HostileNames) {
  const std::string euro = "\xE2\x82\xAC";
  const std::pair<std::string, std::string> cases[] = {
      {"left " + euro, "left " + euro},
      {"a\x1b[31m\n\x7f", "a\\u001b[31m\\u000a\\u007f"},
      {"\xC2\x9B\xD8\x9C\xE2\x80\xAE\xE2\x81\xA9", "\\u009b\\u061c\\u202e\\u2069"},
      {"\xFF", "\xEF\xBF\xBD"},
      {std::string(5000, 'n'), std::string(3000, 'n') + " [... 1000 bytes ...] " + std::string(1000, 'n')},
  };
  for (const auto& [name, shown] : cases) EXPECT_EQ(tovrdb::printable(name), shown);
  EXPECT_EQ(tovrdb::jsonText("\xC2\x9B" + euro), "\"\\u009b" + euro + "\"\n");
}

TEST_F(ToolTest, OutputOfManyWords_ClosedPipe) {
  succeed("manual | head -1");
  const std::string line = commandLine("sample --size 2000x2000 --quiet -o - 2>.err");
  ASSERT_EQ(std::system(("{ " + line + "; echo $? >'" + path("code") + "'; } | true").c_str()), 0);
  EXPECT_EQ(read("code"), "141\n");
  EXPECT_EQ(read(".err"), "");
}

TEST_F(ToolTest, ShellsCompleteWhatAnOptionTakes) {
  succeed("completion bash >completion");
  const std::string bash = "cd '" + folder().string() + "' && bash script";
  for (const char* type : {"uint8 uint16 uint32 uint64", "float16 float32 float64"}) {
    write("script", ". ./completion; COMP_WORDS=(tovrdb coef get --dtype " + std::string(type, 2) +
                        "); COMP_CWORD=4; _tovrdb; echo \"${COMPREPLY[*]}\" >completed");
    ASSERT_EQ(std::system(bash.c_str()), 0);
    EXPECT_EQ(read("completed"), type + std::string("\n"));
  }
}

// At the prompt for a key: Ctrl-C, or a request to end.
TEST_F(ToolTest, ExitCode_EndedBySignal) {
  makeWall();
  for (const int signal : {SIGINT, SIGTERM}) {
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
      unsetenv("TOVRDB_KEY");
      const std::string file = path("wall.db");
      execl(TOVRDB_PROGRAM, "tovrdb", "--plugin", TOVR_PLUGIN_FILE, "info", file.c_str(), nullptr);
      _exit(127);
    }
    std::string shown;
    char bytes[256];
    for (ssize_t count = 1; count > 0;) {  // a terminal that nobody writes to any more fails to be read
      count = ::read(terminal, bytes, sizeof bytes);
      shown.append(bytes, count > 0 ? static_cast<std::size_t>(count) : 0);
      if (shown != "Key: ") continue;
      ASSERT_EQ(signal == SIGINT ? ::write(terminal, "\x03", 1) : kill(child, signal) + 1, 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    close(terminal);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 128 + signal);
    EXPECT_TRUE(contains(shown, "nothing was done"));
  }
}

struct WriterTest : ToolTest {
  // A process that is in the middle of writing large.npy.
  pid_t startWriter() const {
    const std::string output = path("large.npy");
    const pid_t child = fork();
    if (child == 0) {
      execl(TOVRDB_PROGRAM, "tovrdb", "--quiet", "sample", "--size", "20000x20000", "-o", output.c_str(), nullptr);
      _exit(127);
    }
    while (!anythingUnfinished() && waitpid(child, nullptr, WNOHANG) == 0) std::this_thread::yield();
    return child;
  }

  // The status with which it ends.
  static int end(pid_t child, int signal) {
    int status = 0;
    kill(child, signal);
    waitpid(child, &status, 0);
    return status;
  }
};

TEST_F(WriterTest, Interrupt_LeavesNothingUnfinished) {
  const int status = end(startWriter(), SIGINT);
  ASSERT_TRUE(WIFSIGNALED(status)) << status;
  EXPECT_EQ(WTERMSIG(status), SIGINT);
  EXPECT_FALSE(fs::exists(path("large.npy")));
  EXPECT_FALSE(anythingUnfinished());
}

TEST_F(WriterTest, Leftover_GoesOnceItsWriterIsDead) {
  const pid_t writer = startWriter();
  const std::string sample = "sample --size 1x1 --force -o small.npy";
  fs::create_directory(path("mine.unfinished-1.tovrdb"));  // others may enter it: no writer has made it
  fs::create_directory_symlink(path("mine.unfinished-1.tovrdb"), path("a.unfinished-1.tovrdb"));
  const std::string leftover = fmt::format("large.npy.unfinished-{}.tovrdb", writer);
  EXPECT_EQ(run(sample).err.find("killed"), std::string::npos);
  EXPECT_EQ(modeOf(leftover), 0700U);
  end(writer, SIGKILL);
  EXPECT_TRUE(fs::exists(path(leftover)));
  expectTold(leftover + ", which a killed run", sample);
  EXPECT_FALSE(fs::exists(path(leftover)));
  EXPECT_TRUE(fs::exists(path("mine.unfinished-1.tovrdb")));
  EXPECT_TRUE(fs::is_symlink(path("a.unfinished-1.tovrdb")));
}

// Done is done, also to a program that has more to say.
TEST_F(ToolTest, Interrupt_AfterTheRenameIsLate) {
  for (const bool committed : {false, true}) {
    const pid_t child = fork();
    if (child == 0) {
      tovrdb::handleInterrupts();
      tovrdb::FileOutput file(path("new"), tovrdb::Existing::kRefuse, 0600);
      if (committed) file.commit();
      raise(SIGINT);
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, committed ? 0 : SIGINT);
    EXPECT_EQ(fs::exists(path("new")), committed);
    EXPECT_FALSE(anythingUnfinished());
  }
}

TEST_F(ToolTest, ATerminalShowsTheWorkAndAPipeDoesNot) {
  succeed("create big.db --type 0");
  succeed("screen add big.db --name big --rect 0,0,511,511");
  write("b.npy", npy("|u1", "512, 512, 9", payload(512 * 512 * 9)));
  write("list.json", R"([{"file": "b.npy", "type": 1, "rect": [0, 0, 511, 511]}])");
  const std::string put = "coef put big.db --manifest list.json";
  const auto onTerminal = [&](const std::string& environment) {
    const std::string typed = commandLine(put, "unset NO_COLOR && TERM=xterm " + environment + kKey);
    write("typed.sh", typed);
    EXPECT_EQ(std::system(
                  ("cd '" + folder().string() + "' && script -qec 'sh typed.sh' /dev/null >typed </dev/null").c_str()),
              0);
    return read("typed");
  };
  EXPECT_EQ(run(put).err, "tovrdb: stored 1 block\n");
  EXPECT_EQ(run("--quiet " + put).err, "");
  EXPECT_TRUE(contains(onTerminal(""), "coef put [####"));
  EXPECT_EQ(onTerminal("NO_COLOR=1 ").find('['), std::string::npos);
}

}  // namespace
