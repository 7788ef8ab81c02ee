// tovrdb as its users run it: a process with arguments, an environment and streams, in a fresh folder.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/Files.h"
#include "tests/support/FolderTest.h"
#include "tests/tool/NpyText.h"

namespace tovrtest {

namespace fs = std::filesystem;

constexpr char kKey[] = "TOVRDB_KEY='the test key' ";
constexpr char kNoKey[] = "";

inline testing::AssertionResult contains(const std::string& text, const std::string& words) {
  if (text.find(words) != std::string::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "\"" << words << "\" is not in:\n" << text;
}

struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

struct ToolTest : FolderTest {
  ToolTest() {
    write("cells", payload(64));
    write("leaks", "leak:libfontconfig\n");  // it keeps for the whole process what the program cannot free
    setenv("LSAN_OPTIONS", ("print_suppressions=0:suppressions=" + path("leaks")).c_str(), 1);
  }

  std::string read(const std::string& name) const { return textOf(contentOf(path(name))); }

  void write(const std::string& name, const std::string& bytes) const {
    written_.insert(name);
    writeFile(path(name), bytesOf(bytes));
  }

  // What the shell runs in the folder: the program, with an environment before it and its arguments behind.
  std::string commandLine(const std::string& arguments, const std::string& environment = kKey) const {
    return "cd '" + folder().string() + "' && unset TOVRDB_KEY && " + environment +
           "TOVRDB_PLUGIN='" TOVR_PLUGIN_FILE "' '" TOVRDB_PROGRAM "' " + arguments;
  }

  // Runs the program; `arguments` may redirect, `input` is what a pipe brings.
  Outcome run(const std::string& arguments, const std::string& environment = kKey,
              const std::string& input = "") const {
    write(".in", input);
    const int status = std::system(commandLine("2>.err >.out " + arguments, "cat .in | " + environment).c_str());
    const Outcome outcome = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read(".out"), read(".err")};
    expectNoSecrets(outcome.out, "the output of " + arguments, Payload::kAskedFor);
    expectNoSecrets(outcome.err, "the messages of " + arguments);
    return outcome;
  }

  std::string succeed(const std::string& arguments) const {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, 0) << arguments << "\n" << outcome.err;
    return outcome.out;
  }

  // Succeeds, with these words among its messages.
  void expectTold(const std::string& words, const std::string& arguments) const {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, 0) << arguments << "\n" << outcome.err;
    EXPECT_TRUE(contains(outcome.err, words)) << arguments;
  }

  void expectFailure(int code, const std::string& words, const std::string& arguments,
                     const std::string& environment = kKey) const {
    const Outcome outcome = run(arguments, environment);
    EXPECT_EQ(outcome.code, code) << arguments << "\n" << outcome.err;
    EXPECT_TRUE(contains(outcome.err, words)) << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
  }

  // No check fails.
  void expectSound(const std::string& file) const { EXPECT_EQ(run("check " + file).code, 0) << file; }

  // A file that was not finished, or not removed.
  bool anythingUnfinished() const {
    for (const auto& entry : fs::directory_iterator(folder())) {
      for (const char* sign : {"unfinished", "-journal", ".temp"}) {
        if (entry.path().filename().string().find(sign) != std::string::npos) return true;
      }
    }
    return false;
  }

  // The permissions of a file or folder.
  unsigned int modeOf(const std::string& name) const {
    return static_cast<unsigned int>(fs::symlink_status(path(name)).permissions());
  }

  // A database of type 0 with the screen 0,0,7,3.
  void makeWall() const {
    succeed("create wall.db --type 0");
    succeed("screen add wall.db --name left --rect 0,0,7,3");
  }
};

}  // namespace tovrtest
