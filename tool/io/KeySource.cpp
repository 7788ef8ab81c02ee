#include "tool/io/KeySource.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include "client/base/Error.h"
#include "client/disk/Platform.h"
#include "tool/io/Terminal.h"

namespace tovrdb::tool {
namespace {

constexpr std::size_t kLongestKey = std::size_t{1} << 16;  // bytes; usual keys have fewer than 100

std::string keyFromPrompt(KeyUse use, const KeyKind& kind) {
  if (!isTerminal(kStandardInput)) {
    throw Error(kKeyProblem, "no key: give {} FILE, set {}, or run it on a terminal", kind.option, kind.variable);
  }
  std::string key = readWithoutEcho(fmt::format("{}: ", kind.prompt));
  if (use == KeyUse::kCreate && key != readWithoutEcho(fmt::format("{} again: ", kind.prompt))) {
    throw Error(kKeyProblem, "the two keys differ; nothing was done");
  }
  return key;
}

std::string keyFromVariable(const std::string& key, const KeyKind& kind) {
  if (key.empty() || (key.back() != '\n' && key.back() != '\r')) return key;
  throw Error(kKeyProblem, "the key in {} ends with a line break, which would become part of it: remove it",
              kind.variable);
}

std::string keyFromAnywhere(const std::string& keyFile, KeyUse use, const KeyKind& kind) {
  if (!keyFile.empty()) return readKeyFile(keyFile);
  if (const char* key = std::getenv(kind.variable)) return keyFromVariable(key, kind);
  return keyFromPrompt(use, kind);
}

// Why the first line of a file cannot be a key: what an editor adds would become part of it. Null if it can.
const char* keyFault(const std::string& line) {
  const auto begins = [&line](const char* mark) { return line.rfind(mark, 0) == 0; };
  if (begins("\xEF\xBB\xBF")) return "begins with a byte order mark: save it as UTF-8 without one";
  if (begins("\xFF\xFE") || begins("\xFE\xFF")) return "is UTF-16: save it as UTF-8 without a byte order mark";
  if (line.find('\0') != std::string::npos) return "holds a zero byte: it is not a text";
  return line.size() > kLongestKey ? "has a first line of more than 64 KiB: is it a key file?" : nullptr;
}

}  // namespace

std::string readKeyFile(const std::string& path) {
  std::ifstream file(pathOf(path), std::ios::binary);
  std::string line(kLongestKey + 1, '\0');
  if (!file || (!file.read(line.data(), static_cast<std::streamsize>(line.size())) && !file.eof())) {
    throw Error(kKeyProblem, "cannot read the key file {}: {}", path, systemError());
  }
  line.resize(static_cast<std::size_t>(file.gcount()));
  line.resize(std::min(line.find('\n'), line.size()));
  if (!line.empty() && line.back() == '\r') line.pop_back();
  if (const char* fault = keyFault(line)) throw Error(kKeyProblem, "the key file {} {}", path, fault);
  return line;
}

std::string readKey(const std::string& keyFile, KeyUse use, const KeyKind& kind) {
  std::string key = keyFromAnywhere(keyFile, use, kind);
  // The engine takes an empty key for "not encrypted".
  if (key.empty()) throw Error(kKeyProblem, "the key is empty: an empty key would leave the file unencrypted");
  return key;
}

}  // namespace tovrdb::tool
