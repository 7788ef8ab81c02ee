#include "tool/KeySource.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "tool/Platform.h"
#include "tool/ToolError.h"

namespace tovrtool {
namespace {

std::string keyFromFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string line;
  if (!file || (!std::getline(file, line) && !file.eof())) {
    throw ToolError(kKeyProblem, "cannot read the key file " + path + ": " + systemError());
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::string keyFromPrompt(KeyUse use) {
  if (!isTerminal(kStandardInput)) {
    throw ToolError(kKeyProblem, "no key: give --key-file FILE, set TOVRDB_KEY, or run it on a terminal");
  }
  try {
    std::string key = readWithoutEcho("Key: ");
    if (use == KeyUse::kCreate && key != readWithoutEcho("Key again: ")) {
      throw ToolError(kKeyProblem, "the two keys differ: nothing was created");
    }
    return key;
  } catch (const ToolError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw ToolError(kKeyProblem, error.what());
  }
}

std::string keyFromAnywhere(const std::string& keyFile, KeyUse use) {
  if (!keyFile.empty()) return keyFromFile(keyFile);
  if (const char* key = std::getenv("TOVRDB_KEY")) return key;
  return keyFromPrompt(use);
}

}  // namespace

std::string readKey(const std::string& keyFile, KeyUse use) {
  std::string key = keyFromAnywhere(keyFile, use);
  // The engine takes an empty key for "not encrypted".
  if (key.empty()) throw ToolError(kKeyProblem, "the key is empty: an empty key would leave the file unencrypted");
  return key;
}

}  // namespace tovrtool
