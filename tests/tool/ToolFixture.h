// tovrdb as its users run it: a process with arguments, an environment and streams, in a fresh folder.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "tests/support/SecretWatch.h"
#include "tests/tool/NpyText.h"

namespace tovrtest {

namespace fs = std::filesystem;

constexpr char kKey[] = "TOVRDB_KEY='the test key' ";
constexpr char kNoKey[] = "";

struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

struct ToolTest : testing::Test {
  ToolTest() {
    std::string pattern = (fs::temp_directory_path() / "tovrdb-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    const std::string stored = payload(16);
    rememberPayload({stored.begin(), stored.end()});
  }
  ~ToolTest() override {
    expectNoSecretsIn(folder_, written_);
    fs::remove_all(folder_);
  }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }

  std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void write(const std::string& name, const std::string& bytes) const {
    written_.insert(name);
    std::ofstream(path(name), std::ios::binary) << bytes;
  }

  // Runs the program in the folder; `arguments` may redirect, `input` is what a pipe brings.
  Outcome run(const std::string& arguments, const std::string& environment = kKey,
              const std::string& input = "") const {
    write(".in", input);
    const std::string command = "cd '" + folder_.string() + "' && unset TOVRDB_KEY && cat .in | " + environment +
                                "TOVRDB_PLUGIN='" TOVR_PLUGIN_FILE "' '" TOVRDB_PROGRAM "' 2>.err >.out " + arguments;
    const int status = std::system(command.c_str());
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

  void expectFailure(int code, const std::string& words, const std::string& arguments,
                     const std::string& environment = kKey) const {
    const Outcome outcome = run(arguments, environment);
    EXPECT_EQ(outcome.code, code) << arguments << "\n" << outcome.err;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << arguments << "\n" << outcome.err;
    EXPECT_EQ(outcome.out, "") << arguments;
  }

  // A database of type 0 with the screen 0,0..7,3.
  void makeWall() const {
    succeed("create wall.db --type 0");
    succeed("screen add wall.db --name left --rect 0,0,7,3");
  }

  fs::path folder_;
  mutable std::set<std::string> written_;
};

}  // namespace tovrtest
