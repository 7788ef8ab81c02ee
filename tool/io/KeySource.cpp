#include "tool/io/KeySource.h"

#include <fmt/core.h>

#include <cstdlib>
#include <fstream>

#include "tool/system/Paths.h"
#include "tool/system/Platform.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

std::string keyFromPrompt(KeyUse use, const KeyKind& kind) {
  if (!isTerminal(kStandardInput)) {
    throw ToolError(kKeyProblem, "no key: give {} FILE, set {}, or run it on a terminal", kind.option, kind.variable);
  }
  std::string key = readWithoutEcho(fmt::format("{}: ", kind.prompt));
  if (use == KeyUse::kCreate && key != readWithoutEcho(fmt::format("{} again: ", kind.prompt))) {
    throw ToolError(kKeyProblem, "the two keys differ: nothing was done");
  }
  return key;
}

std::string keyFromAnywhere(const std::string& keyFile, KeyUse use, const KeyKind& kind) {
  if (!keyFile.empty()) return readKeyFile(keyFile);
  if (const char* key = std::getenv(kind.variable)) return key;
  return keyFromPrompt(use, kind);
}

}  // namespace

std::string readKeyFile(const std::string& path) {
  std::ifstream file(pathOf(path), std::ios::binary);
  std::string line;
  if (!file || (!std::getline(file, line) && !file.eof())) {
    throw ToolError(kKeyProblem, "cannot read the key file {}: {}", path, systemError());
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

std::string readKey(const std::string& keyFile, KeyUse use, const KeyKind& kind) {
  std::string key = keyFromAnywhere(keyFile, use, kind);
  // The engine takes an empty key for "not encrypted".
  if (key.empty()) throw ToolError(kKeyProblem, "the key is empty: an empty key would leave the file unencrypted");
  return key;
}

}  // namespace tovrtool
