// Runs a fuzz target over kept inputs, every file given and every file in the folders given, and then, with --made=N,
// over N inputs of random bytes, the same every time. Ends as the target ends on a finding; an empty corpus is an
// error.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz/Target.h"

namespace {

namespace fs = std::filesystem;

constexpr char kMade[] = "--made=";

// The number behind --made=; 0 for other arguments.
int madeOf(const std::string& argument) {
  return argument.rfind(kMade, 0) == 0 ? std::stoi(argument.substr(sizeof kMade - 1)) : 0;
}

std::vector<fs::path> filesOf(int count, char** names) {
  std::vector<fs::path> files;
  for (int i = 1; i < count; ++i) {
    if (madeOf(names[i]) > 0) continue;
    if (!fs::is_directory(names[i])) {
      files.emplace_back(names[i]);
      continue;
    }
    for (const auto& entry : fs::directory_iterator(names[i])) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void run(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  tovrfuzz::require(file.is_open(), "an input cannot be read");
  const std::vector<char> input(std::istreambuf_iterator<char>(file), {});
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

void runMade(int count) {
  std::minstd_rand random(20261123);
  for (int i = 0; i < count; ++i) {
    std::vector<std::uint8_t> input(random() % 48);
    for (auto& byte : input) byte = static_cast<std::uint8_t>(random() >> 8);
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  std::fprintf(stderr, "%d made inputs\n", count);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<fs::path> files = filesOf(argc, argv);
  for (const fs::path& file : files) {
    std::fprintf(stderr, "%s\n", file.filename().string().c_str());  // the last one named is the one at fault
    run(file);
  }
  std::fprintf(stderr, "%zu inputs\n", files.size());
  for (int i = 1; i < argc; ++i) runMade(madeOf(argv[i]));
  return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
