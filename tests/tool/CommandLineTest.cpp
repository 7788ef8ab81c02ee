// What a process is: its streams, its terminal, its exit codes, and the words it has for a command line without sense.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>

#include "tests/tool/ToolFixture.h"

namespace {

using namespace tovrtest;

TEST_F(ToolTest, ATargetThatIsOpenAlreadyIsWrittenToAndNotReplaced) {
  makeWall();
  write("block.npy", npy("|u1", "4, 8", payload(32)));
  succeed("coef put wall.db --type 1 --at 0,0 block.npy");
  const std::string get = "coef get wall.db --type 1 --rect 0,0,7,3 --raw -o ";
  for (const char* name : {"/dev/stdout", "/proc/self/fd/1", "/dev/fd/1"}) {
    EXPECT_EQ(succeed(get + name), payload(32)) << name;
    EXPECT_EQ(succeed(get + name + " | cat"), payload(32)) << name;
  }
  write("kept", "before ");
  succeed(get + "/dev/fd/7 7>>kept");
  EXPECT_EQ(read("kept"), "before " + payload(32));
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const int reader = ::open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  succeed(get + "pipe");
  char piped[64];
  EXPECT_EQ(::read(reader, piped, sizeof piped), 32);
  ::close(reader);
  EXPECT_TRUE(fs::is_fifo(path("pipe")));
}

TEST_F(ToolTest, CommandLinesWithoutSenseSayWhatWouldHaveSome) {
  const struct {
    const char* arguments;
    int code;
    const char* words;
  } cases[] = {
      {"coefs", 2, "there is no command coefs; there are inspect, create"},
      {"coef store", 2, "there is no command coef store; there are put"},
      {"coef", 2, "say what to do: coef takes one of put"},
      {"sample --seed -1 -o x.npy", 2, "--seed: -1 is below 0"},
      {"sample --size 2147483647x2147483647 -o x.npy", 3, "--force writes all the same"},
      {"encrypt text /proc/target", 3, "cannot create /proc/target"},
  };
  write("text", "some text");
  for (const auto& c : cases) expectFailure(c.code, c.words, c.arguments, "TOVRDB_CIPHER_KEY=12345678 ");
  EXPECT_FALSE(fs::exists(path("x.npy")));
}

TEST_F(ToolTest, ShellsCompleteWhatAnOptionTakes) {
  const struct {
    const char* line;
    const char* words;
  } cases[] = {{"coef get --dtype ui", "uint8 uint16 uint32 uint64"},
               {"completion z", "zsh"},
               {"create --type ''", "0 1"},
               {"coef pu", "put"},
               {"coef get -o c", ""}};  // a file's name, which is the shell's own work
  succeed("completion bash >completion");
  for (const auto& c : cases) {
    const std::string script = ". ./completion; COMP_WORDS=(tovrdb " + std::string(c.line) +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]}-1)); _tovrdb; echo \"${COMPREPLY[*]}\" >completed";
    write("script", script);
    ASSERT_EQ(std::system(("cd '" + folder_.string() + "' && bash script").c_str()), 0);
    EXPECT_EQ(read("completed"), std::string(c.words) + "\n") << c.line;
  }
}

TEST_F(ToolTest, AnInterruptAtTheKeyPromptEndsWithTheCodeOfInterrupts) {
  makeWall();
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
    if (shown == "Key: ") {
      ASSERT_EQ(::write(terminal, "\x03", 1), 1);
    }
  }
  int status = 0;
  waitpid(child, &status, 0);
  close(terminal);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 130);
  EXPECT_NE(shown.find("interrupted: nothing was done"), std::string::npos) << shown;
}

}  // namespace
